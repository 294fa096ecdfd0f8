#pragma once

#include "platform/ErrorBoundary.h"
#include "platform/Platform.h"

#include <QWidget>

class QKeyEvent;

// A window of the program. It is built hidden, loaded once by Forms on its
// first use and afterwards only shown and hidden. Handlers connected with
// on() or wrapped in guard() run behind the error boundary.
class Form : public QWidget {
    Q_OBJECT
public:
    Form(Platform &platform, const QString &name, QWidget *parent = nullptr);

    // The form's Load event; Forms calls it once, right after construction.
    virtual void Load() {}

    void Show(); // shows, raises and activates
    void Hide() { hide(); }

    // Keyboard preview: the form sees every key of its window before the
    // control that has the focus.
    void setKeyPreview(bool on);

protected:
    Platform &platform() const { return m_platform; }

    // Key events of the window while preview is on; true when consumed. An
    // event not consumed travels on to the control and its parents and is
    // previewed again on the way, so a preview that acts must consume.
    virtual bool keyPreview(QKeyEvent *) { return false; }
    bool eventFilter(QObject *watched, QEvent *event) override;

    template <class Handler>
    void guard(Handler &&handler)
    {
        boundary::run(m_platform.dialogs, m_platform.process, std::forward<Handler>(handler));
    }

    template <class Sender, class Signal, class Handler>
    QMetaObject::Connection on(Sender *sender, Signal signal, Handler handler)
    {
        return connect(sender, signal, this, [this, handler] { guard(handler); });
    }

private:
    Platform &m_platform;
    bool m_keyPreview = false;
};
