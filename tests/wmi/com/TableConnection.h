// A connection of a few dozen lines: it answers from a table of classes and instances, and keeps what is
// written.
#pragma once

#include <quillet-wmi/ClassMerge.h>
#include <quillet-wmi/Connection.h>
#include <quillet-wmi/Mof.h>
#include <quillet-wmi/ObjectPath.h>
#include <quillet-wmi/Wql.h>

#include <algorithm>
#include <functional>

namespace quillet::tests {

/// The table: what MOF says, and nothing derived from it.
class Table : public wmi::MofTarget {
  public:
    wmi::ClassPtr FindClass(std::wstring_view name) const override {
        const auto found = std::find_if(classes.begin(), classes.end(),
                                        [&](const auto& known) { return wmi::SameName(known->name, name); });
        return found != classes.end() ? *found : nullptr;
    }
    HRESULT AddClass(wmi::ClassDefinition definition, std::wstring* reason) override {
        std::wstring ignored;
        const auto superclass = FindClass(definition.superclass);
        if (!wmi::MergeClass(definition, superclass.get(), reason != nullptr ? *reason : ignored)) {
            return HRESULT(WBEM_E_INVALID_CLASS);
        }
        classes.push_back(std::make_shared<const wmi::ClassDefinition>(std::move(definition)));
        return S_OK;
    }
    wmi::InstancePtr FindInstance(std::wstring_view text) const override {
        const auto path = wmi::ObjectPath::Parse(text);
        const auto found = std::find_if(instances.begin(), instances.end(), [&](const auto& known) {
            return path && wmi::RelativePath(*known) == path->Relative();
        });
        return found != instances.end() ? *found : nullptr;
    }
    HRESULT StoreInstance(wmi::Instance& instance, wmi::WriteMode mode, wmi::InstancePtr& kept,
                          std::wstring*) override {
        const wmi::InstancePtr present = FindInstance(wmi::RelativePath(instance));
        if (present && mode == wmi::WriteMode::CreateOnly) {
            return static_cast<HRESULT>(WBEM_E_ALREADY_EXISTS);
        }
        std::erase(instances, present);
        kept = std::make_shared<const wmi::Instance>(std::move(instance));
        instances.push_back(kept);
        return S_OK;
    }
    std::optional<wmi::QualifierDeclaration> FindQualifierDeclaration(std::wstring_view) const override {
        return std::nullopt;
    }
    HRESULT DeclareQualifier(wmi::QualifierDeclaration) override { return S_OK; }

    std::vector<wmi::ClassPtr> classes;
    std::vector<wmi::InstancePtr> instances;
};

/// The table as one namespace.
class TableConnection : public wmi::Connection {
  public:
    explicit TableConnection(Table& table) : m_table(table) {}

    const std::wstring& ServerName() const noexcept override { return m_server; }
    const std::wstring& NamespaceName() const noexcept override { return m_namespace; }

    wmi::Outcome GetObject(const wmi::CallContext&, std::wstring_view text, wmi::Object& found) override {
        const auto path = wmi::ObjectPath::Parse(text);
        if (path && path->IsClass()) {
            found.definition = m_table.FindClass(path->className);
        } else if ((found.instance = m_table.FindInstance(text)) != nullptr) {
            found.definition = found.instance->definition;
        }
        return found.definition != nullptr ? HRESULT(S_OK) : HRESULT(WBEM_E_NOT_FOUND);
    }
    wmi::Outcome Instances(const wmi::CallContext&, std::wstring_view className, wmi::Depth,
                           std::unique_ptr<wmi::ObjectStream>& found) override {
        found = Those([&](const wmi::Instance& each) { return each.definition->IsA(className); });
        return S_OK;
    }
    wmi::Outcome Classes(const wmi::CallContext&, std::wstring_view, wmi::Depth,
                         std::unique_ptr<wmi::ObjectStream>&) override {
        return HRESULT(WBEM_E_NOT_SUPPORTED);
    }
    wmi::Outcome Query(const wmi::CallContext&, std::wstring_view wql,
                       std::unique_ptr<wmi::ObjectStream>& found) override {
        const auto query = wmi::ParseWql(wql);
        if (!query || query->kind != wmi::WqlQuery::Kind::Select) {
            return HRESULT(WBEM_E_INVALID_QUERY);
        }
        found = Those([&](const wmi::Instance& each) {
            return each.definition->IsA(query->className) && (!query->where || Matches(*query->where, each));
        });
        return S_OK;
    }
    wmi::Outcome ExecMethod(const wmi::CallContext&, std::wstring_view, std::wstring_view method,
                            const wmi::Filled* in, wmi::InstancePtr& out) override {
        const auto answer = answers.find(std::wstring(method));
        if (answer == answers.end()) {
            return HRESULT(WBEM_E_INVALID_METHOD);
        }
        for (const auto& known : m_table.classes) {
            if (const auto* found = known->FindMethod(method)) {
                auto result = std::make_shared<wmi::Instance>(wmi::OutSignature(*found));
                answer->second(in, *result);
                out = std::move(result);
            }
        }
        return S_OK;
    }
    wmi::Outcome PutInstance(const wmi::CallContext&, const wmi::Filled& instance,
                             wmi::WriteMode mode) override {
        wmi::Instance written = instance.values;
        wmi::InstancePtr kept;
        return m_table.StoreInstance(written, mode, kept, nullptr);
    }
    wmi::Outcome DeleteInstance(const wmi::CallContext&, std::wstring_view path) override {
        return std::erase(m_table.instances, m_table.FindInstance(path)) != 0 ? HRESULT(S_OK)
                                                                              : HRESULT(WBEM_E_NOT_FOUND);
    }

    /// What a method answers: fills the out-parameters.
    std::map<std::wstring, std::function<void(const wmi::Filled* in, wmi::Instance& out)>> answers;

  private:
    std::unique_ptr<wmi::ObjectStream> Those(const std::function<bool(const wmi::Instance&)>& wanted) const {
        std::vector<wmi::Object> objects;
        for (const auto& each : m_table.instances) {
            if (wanted(*each)) {
                objects.push_back({each->definition, each});
            }
        }
        return wmi::MakeStream(std::move(objects));
    }

    Table& m_table;
    const std::wstring m_server = L"TABLE";
    const std::wstring m_namespace = L"ROOT\\MarloLUM2";
};

/// A host with that one namespace.
class TableHost : public wmi::Host {
  public:
    explicit TableHost(std::shared_ptr<wmi::Connection> connection) : m_connection(std::move(connection)) {}
    wmi::Outcome Connect(const wmi::CallContext&, const wmi::ConnectArguments& arguments,
                         std::shared_ptr<wmi::Connection>& connection) override {
        if (!wmi::NamesNamespace(arguments.resource, m_connection->NamespaceName())) {
            return HRESULT(WBEM_E_INVALID_NAMESPACE);
        }
        connection = m_connection;
        return S_OK;
    }

  private:
    const std::shared_ptr<wmi::Connection> m_connection;
};

} // namespace quillet::tests
