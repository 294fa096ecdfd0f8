#include "netmon/CInterfaces.h"

CInterfaces::Record CInterfaces::Add(Record &item)
{
    mCol.push_back(item);
    item.reset();
    return mCol.back();
}

CInterfaces::Record CInterfaces::Item(const QVariant &index) const
{
    return mCol[position(index)];
}

basic::Long CInterfaces::Count() const
{
    return basic::narrow<basic::Long>(mCol.size());
}

void CInterfaces::Remove(const QVariant &index)
{
    mCol.erase(mCol.begin() + static_cast<std::ptrdiff_t>(position(index)));
}

// The collection has no keys, so a text index names nothing: it fails like a
// position out of range.
std::size_t CInterfaces::position(const QVariant &index) const
{
    switch (index.typeId()) {
    case QMetaType::QString:
    case QMetaType::QByteArray:
        basic::raise(basic::InvalidProcedureCall);
    default:
        break;
    }
    bool ok = false;
    const double value = index.toDouble(&ok);
    if (!ok)
        basic::raise(basic::TypeMismatch);
    const basic::Long i = basic::CLng(value);
    if (i < 1 || i > Count())
        basic::raise(basic::InvalidProcedureCall);
    return static_cast<std::size_t>(i - 1);
}
