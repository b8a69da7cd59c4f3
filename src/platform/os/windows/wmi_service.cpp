// The steps of wmi.h by COM.
#include <windows.h>
// After windows.h, on whose types they build.
#include <objbase.h>
#include <oleauto.h>
#include <wbemidl.h>

#include <new>
#include <utility>

#include "platform/os/unicode.h"
#include "platform/os/windows/wmi.h"

namespace qmp::os {
namespace {

// How long the service may think about one row before the query counts as failed.
constexpr LONG row_timeout_milliseconds = 30'000;

// Owns one reference.
template <typename Interface>
class ComPointer {
  public:
    ComPointer() = default;
    ~ComPointer() { reset(); }
    ComPointer(const ComPointer&) = delete;
    ComPointer& operator=(const ComPointer&) = delete;

    void reset() {
        if (Interface* const held = std::exchange(pointer_, nullptr)) held->Release();
    }
    Interface* get() const { return pointer_; }
    Interface* operator->() const { return pointer_; }
    // For a call that gives an object out.
    Interface** out() {
        reset();
        return &pointer_;
    }

  private:
    Interface* pointer_ = nullptr;
};

// A text as COM passes it. Throws std::bad_alloc.
class Bstr {
  public:
    explicit Bstr(std::string_view text) {
        const std::u16string wide = to_utf16(text);
        text_ =
            SysAllocStringLen(reinterpret_cast<const OLECHAR*>(wide.data()), static_cast<UINT>(wide.size()));
        if (text_ == nullptr) throw std::bad_alloc();
    }
    ~Bstr() { SysFreeString(text_); }
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;
    operator BSTR() const { return text_; }

  private:
    BSTR text_;
};

class Variant {
  public:
    Variant() { VariantInit(&value_); }
    ~Variant() { VariantClear(&value_); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    // For a call that gives a value out.
    VARIANT* out() {
        VariantClear(&value_);
        return &value_;
    }

    // Without the blanks that firmware pads its texts with; empty for what is no text and becomes none.
    std::string take_text() {
        if (value_.vt == VT_NULL || value_.vt == VT_EMPTY) return {};
        if (FAILED(VariantChangeType(&value_, &value_, 0, VT_BSTR)) || value_.bstrVal == nullptr) return {};
        const std::u16string_view text(reinterpret_cast<const char16_t*>(value_.bstrVal),
                                       SysStringLen(value_.bstrVal));
        const std::size_t begin = text.find_first_not_of(u' ');
        if (begin == std::u16string_view::npos) return {};
        return to_utf8(text.substr(begin, text.find_last_not_of(u' ') - begin + 1));
    }

  private:
    VARIANT value_;
};

// The service asks its callers to lend it their identity, which a proxy does not do by itself. Objects that
// live in this process have no proxy and refuse; whatever a refusal spoils, the query itself reports.
void lend_identity(IUnknown* proxy) {
    CoSetProxyBlanket(proxy, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_CALL,
                      RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE);
}

class ComWmiService final : public WmiService {
  public:
    ~ComWmiService() override {
        // Before the library goes that they live in.
        services_.reset();
        locator_.reset();
        if (must_uninitialize_) CoUninitialize();
    }

    bool initialize_com() override {
        const HRESULT result = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        // A success, "initialised before" included, has to be balanced. A thread that has chosen the other
        // model has the library as well.
        must_uninitialize_ = SUCCEEDED(result);
        return must_uninitialize_ || result == RPC_E_CHANGED_MODE;
    }

    bool create_locator() override {
        return SUCCEEDED(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                                          reinterpret_cast<void**>(locator_.out()))) &&
               locator_.get() != nullptr;
    }

    bool connect(std::string_view name_space) override {
        const Bstr path(name_space);
        const HRESULT result =
            locator_->ConnectServer(path, nullptr, nullptr, nullptr, 0, nullptr, nullptr, services_.out());
        if (FAILED(result) || services_.get() == nullptr) return false;
        lend_identity(services_.get());
        return true;
    }

    std::optional<std::vector<WmiRow>> query(std::string_view language, std::string_view query,
                                             std::span<const std::string_view> properties) override {
        const Bstr language_text(language);
        const Bstr query_text(query);
        ComPointer<IEnumWbemClassObject> found;
        const HRESULT result =
            services_->ExecQuery(language_text, query_text,
                                 WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY, nullptr, found.out());
        if (FAILED(result) || found.get() == nullptr) return std::nullopt;
        lend_identity(found.get());
        return read_rows(*found.get(), properties);
    }

  private:
    // A query that is answered in the background may fail at any row.
    static std::optional<std::vector<WmiRow>> read_rows(IEnumWbemClassObject& found,
                                                        std::span<const std::string_view> properties) {
        std::vector<WmiRow> rows;
        while (true) {
            ComPointer<IWbemClassObject> object;
            ULONG count = 0;
            const HRESULT result = found.Next(row_timeout_milliseconds, 1, object.out(), &count);
            if (FAILED(result) || result == WBEM_S_TIMEDOUT) return std::nullopt;
            if (count == 0 || object.get() == nullptr) return rows;
            rows.push_back(read_row(*object.get(), properties));
        }
    }

    static WmiRow read_row(IWbemClassObject& object, std::span<const std::string_view> properties) {
        WmiRow row;
        for (const std::string_view property : properties) {
            const Bstr name(property);
            Variant value;
            const bool there = SUCCEEDED(object.Get(name, 0, value.out(), nullptr, nullptr));
            row[std::string(property)] = there ? value.take_text() : std::string();
        }
        return row;
    }

    bool must_uninitialize_ = false;
    ComPointer<IWbemLocator> locator_;
    ComPointer<IWbemServices> services_;
};

}  // namespace

std::unique_ptr<WmiService> make_wmi_service() {
    return std::make_unique<ComWmiService>();
}

}  // namespace qmp::os
