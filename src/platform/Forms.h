#pragma once

#include <QHash>
#include <QString>

#include <functional>
#include <memory>

class Form;

// Owns every form. A form is made and loaded on its first use and then lives
// to the end of the process: reading a form loads it, and nothing unloads it.
class Forms {
public:
    using Factory = std::function<std::unique_ptr<Form>()>;

    Forms();
    ~Forms();
    Forms(const Forms &) = delete;
    Forms &operator=(const Forms &) = delete;

    void define(const QString &name, Factory factory);

    // Creates and loads the form on first call. A form whose Load is still
    // running is handed out as it stands.
    Form *form(const QString &name);
    template <class T>
    T *get(const QString &name) { return static_cast<T *>(form(name)); }

    bool isLoaded(const QString &name) const { return m_forms.contains(name); }
    void Show(const QString &name);
    void Hide(const QString &name);

private:
    QHash<QString, Factory> m_factories;
    QHash<QString, Form *> m_forms;
    std::vector<std::unique_ptr<Form>> m_owned;
};
