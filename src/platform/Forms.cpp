#include "platform/Forms.h"

#include "basic/RuntimeError.h"
#include "platform/Form.h"

Forms::Forms() = default;

Forms::~Forms()
{
    // Last made, first gone: later forms may point at earlier ones.
    while (!m_owned.empty())
        m_owned.pop_back();
}

void Forms::define(const QString &name, Factory factory)
{
    m_factories.insert(name, std::move(factory));
}

Form *Forms::form(const QString &name)
{
    if (Form *f = m_forms.value(name))
        return f;
    const auto factory = m_factories.constFind(name);
    if (factory == m_factories.constEnd() || !*factory)
        throw basic::RuntimeError(basic::InvalidProcedureCall, QStringLiteral("No form named ") + name);
    std::unique_ptr<Form> made = (*factory)();
    Form *f = made.get();
    m_forms.insert(name, f);
    m_owned.push_back(std::move(made));
    f->Load();
    return f;
}

void Forms::Show(const QString &name)
{
    form(name)->Show();
}

void Forms::Hide(const QString &name)
{
    form(name)->Hide();
}
