#include "basic/RuntimeError.h"

namespace basic {

QString errorDescription(int number)
{
    switch (number) {
    case 5: return QStringLiteral("Invalid procedure call or argument");
    case 6: return QStringLiteral("Overflow");
    case 7: return QStringLiteral("Out of memory");
    case 9: return QStringLiteral("Subscript out of range");
    case 11: return QStringLiteral("Division by zero");
    case 13: return QStringLiteral("Type mismatch");
    case 52: return QStringLiteral("Bad file name or number");
    case 53: return QStringLiteral("File not found");
    case 55: return QStringLiteral("File already open");
    case 62: return QStringLiteral("Input past end of file");
    case 68: return QStringLiteral("Device unavailable");
    case 75: return QStringLiteral("Path/File access error");
    case 76: return QStringLiteral("Path not found");
    case 91: return QStringLiteral("Object variable or With block variable not set");
    case 380: return QStringLiteral("Invalid property value");
    case 382: return QStringLiteral("Set not supported at runtime");
    default: return QStringLiteral("Application-defined or object-defined error");
    }
}

RuntimeError::RuntimeError(int number, QString description)
    : m_number(number)
    , m_description(description.isNull() ? errorDescription(number) : std::move(description))
    , m_what("Run-time error " + std::to_string(number) + ": " + m_description.toStdString())
{
}

void raise(int number)
{
    throw RuntimeError(number);
}

} // namespace basic
