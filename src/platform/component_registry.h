// Exchangeable components (allocators, parallel frameworks) by type key and in menu order.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "console/console.h"
#include "errors/exception.h"

namespace qmp {

template <typename Component>
class ComponentFactory {
  public:
    virtual ~ComponentFactory() = default;
    virtual const char* get_display_name() const = 0;
    // A component with default fields.
    virtual std::unique_ptr<Component> create() const = 0;
};

template <typename Component>
class ComponentRegistry {
  public:
    struct Texts {
        const char* duplicate;    // the end of the program when a key is registered twice
        const char* function;     // what an unknown key's exception names as its origin
        const char* unknown_key;  // what precedes the key there
    };

    explicit ComponentRegistry(Texts texts) : texts_(texts) {}

    // Appends to the menu. Not while other threads use the registry.
    void add(std::string key, std::unique_ptr<ComponentFactory<Component>> factory) {
        const auto [entry, inserted] = by_key_.emplace(std::move(key), std::move(factory));
        if (!inserted) {
            console::print_warning(texts_.duplicate);
            console::terminate(1);
        }
        in_menu_order_.push_back(entry->second.get());
        keys_in_menu_order_.push_back(entry->first);
    }

    // A class that names itself by its constants type_name and display_name.
    template <typename Class>
    void add() {
        add(Class::type_name, std::make_unique<FactoryOf<Class>>());
    }

    std::unique_ptr<Component> create(std::string_view key) const {
        const auto found = by_key_.find(key);
        if (found == by_key_.end()) {
            throw InvalidParametersException(texts_.function, texts_.unknown_key + std::string(key));
        }
        return found->second->create();
    }
    std::unique_ptr<Component> create(std::uint64_t menu_number) const {
        return in_menu_order_.at(menu_number)->create();
    }

    const std::vector<std::string>& keys() const { return keys_in_menu_order_; }
    std::vector<std::string> display_names() const {
        std::vector<std::string> names;
        for (const auto* factory : in_menu_order_) names.push_back(factory->get_display_name());
        return names;
    }

  private:
    template <typename Class>
    class FactoryOf final : public ComponentFactory<Component> {
      public:
        const char* get_display_name() const override { return Class::display_name; }
        std::unique_ptr<Component> create() const override { return std::make_unique<Class>(); }
    };

    Texts texts_;
    std::map<std::string, std::unique_ptr<ComponentFactory<Component>>, std::less<>> by_key_;
    std::vector<const ComponentFactory<Component>*> in_menu_order_;
    std::vector<std::string> keys_in_menu_order_;
};

}  // namespace qmp
