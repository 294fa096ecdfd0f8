#pragma once

#include <QString>
#include <exception>
#include <string>

namespace basic {

// The error numbers the program raises; their texts are the ones users of the
// classic desktop runtime know, and the message box shows them verbatim.
enum ErrorNumber : int {
    InvalidProcedureCall = 5,
    Overflow = 6,
    SubscriptOutOfRange = 9,
    DivisionByZero = 11,
    TypeMismatch = 13,
    BadFileNameOrNumber = 52,
    FileNotFound = 53,
    FileAlreadyOpen = 55,
    DeviceUnavailable = 68,
    PathFileAccessError = 75,
    InvalidPropertyValue = 380,
    SetNotSupportedAtRuntime = 382,
};

QString errorDescription(int number);

class RuntimeError : public std::exception {
public:
    explicit RuntimeError(int number, QString description = QString());

    int number() const noexcept { return m_number; }
    const QString &description() const noexcept { return m_description; }
    const char *what() const noexcept override { return m_what.c_str(); }

private:
    int m_number;
    QString m_description;
    std::string m_what;
};

[[noreturn]] void raise(int number);

} // namespace basic
