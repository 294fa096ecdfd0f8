#pragma once

#include <QString>

// Message boxes with the classic button and icon codes, added together:
// MsgBox::Critical + MsgBox::OkOnly. The answer is one of the Answer codes.
namespace MsgBox {
// buttons
constexpr int OkOnly = 0, OkCancel = 1, AbortRetryIgnore = 2, YesNoCancel = 3, YesNo = 4, RetryCancel = 5;
// icons
constexpr int NoIcon = 0, Critical = 16, Question = 32, Exclamation = 48, Information = 64;
// answers
constexpr int Ok = 1, Cancel = 2, Abort = 3, Retry = 4, Ignore = 5, Yes = 6, No = 7;
} // namespace MsgBox

class Dialogs {
public:
    virtual ~Dialogs() = default;
    // Modal; an empty title shows the application title.
    virtual int MsgBox(const QString &prompt, int style = 0, const QString &title = QString()) = 0;
};
