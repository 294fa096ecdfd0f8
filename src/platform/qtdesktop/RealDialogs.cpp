#include "platform/qtdesktop/RealDialogs.h"

#include <QMessageBox>

int RealDialogs::MsgBox(const QString &prompt, int style, const QString &title)
{
    QMessageBox box;
    box.setObjectName(QStringLiteral("MsgBox"));
    box.setWindowTitle(title.isEmpty() ? m_appTitle : title);
    box.setText(prompt);
    switch (style & 0x70) {
    case MsgBox::Critical: box.setIcon(QMessageBox::Critical); break;
    case MsgBox::Question: box.setIcon(QMessageBox::Question); break;
    case MsgBox::Exclamation: box.setIcon(QMessageBox::Warning); break;
    case MsgBox::Information: box.setIcon(QMessageBox::Information); break;
    default: box.setIcon(QMessageBox::NoIcon); break;
    }

    struct Choice {
        QMessageBox::StandardButton button;
        int answer;
    };
    QList<Choice> choices;
    switch (style & 0x0F) {
    case MsgBox::OkCancel: choices = {{QMessageBox::Ok, MsgBox::Ok}, {QMessageBox::Cancel, MsgBox::Cancel}}; break;
    case MsgBox::AbortRetryIgnore:
        choices = {{QMessageBox::Abort, MsgBox::Abort}, {QMessageBox::Retry, MsgBox::Retry}, {QMessageBox::Ignore, MsgBox::Ignore}};
        break;
    case MsgBox::YesNoCancel:
        choices = {{QMessageBox::Yes, MsgBox::Yes}, {QMessageBox::No, MsgBox::No}, {QMessageBox::Cancel, MsgBox::Cancel}};
        break;
    case MsgBox::YesNo: choices = {{QMessageBox::Yes, MsgBox::Yes}, {QMessageBox::No, MsgBox::No}}; break;
    case MsgBox::RetryCancel: choices = {{QMessageBox::Retry, MsgBox::Retry}, {QMessageBox::Cancel, MsgBox::Cancel}}; break;
    default: choices = {{QMessageBox::Ok, MsgBox::Ok}}; break;
    }
    QMessageBox::StandardButtons buttons;
    for (const Choice &c : choices)
        buttons |= c.button;
    box.setStandardButtons(buttons);
    box.setDefaultButton(choices.first().button);

    const int pressed = box.exec();
    for (const Choice &c : choices)
        if (pressed == c.button)
            return c.answer;
    // Closed with Escape or the close box: the cancel answer when there is one.
    for (const Choice &c : choices)
        if (c.answer == MsgBox::Cancel)
            return MsgBox::Cancel;
    return choices.first().answer;
}
