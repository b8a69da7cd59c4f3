#include "platform/os/privileges.h"

#include <windows.h>

#include "platform/os/unicode.h"

namespace qmp::os {
namespace {

HANDLE as_handle(std::intptr_t token) {
    return reinterpret_cast<HANDLE>(token);
}

class SystemTokenCalls final : public TokenCalls {
  public:
    Token open() const override {
        HANDLE token = nullptr;
        if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, &token))
            return {GetLastError(), 0};
        return {no_error, reinterpret_cast<std::intptr_t>(token)};
    }

    Privilege look_up(std::string_view name) const override {
        const std::u16string wide = to_utf16(name);
        LUID identifier{};
        if (!LookupPrivilegeValueW(nullptr, reinterpret_cast<const wchar_t*>(wide.c_str()), &identifier))
            return {GetLastError(), 0};
        const auto high = static_cast<std::uint32_t>(identifier.HighPart);
        return {no_error, std::uint64_t{high} << 32 | identifier.LowPart};
    }

    Adjustment adjust(std::intptr_t token, std::uint64_t privilege, bool enable) const override {
        TOKEN_PRIVILEGES wanted{};
        wanted.PrivilegeCount = 1;
        wanted.Privileges[0].Luid.LowPart = static_cast<DWORD>(privilege);
        wanted.Privileges[0].Luid.HighPart = static_cast<LONG>(privilege >> 32);
        wanted.Privileges[0].Attributes = enable ? SE_PRIVILEGE_ENABLED : 0;
        const bool succeeded =
            AdjustTokenPrivileges(as_handle(token), FALSE, &wanted, 0, nullptr, nullptr) != 0;
        return {succeeded, GetLastError()};
    }

    bool close(std::intptr_t token) const override { return CloseHandle(as_handle(token)) != 0; }
};

}  // namespace

const TokenCalls& token_calls() {
    static const SystemTokenCalls calls;
    return calls;
}

std::string_view lock_memory_permission() {
    return "SeLockMemoryPrivilege";
}

}  // namespace qmp::os
