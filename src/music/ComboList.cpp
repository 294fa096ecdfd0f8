#include "music/ComboList.h"

#include "basic/RuntimeError.h"

#include <QComboBox>

void ComboList::Clear()
{
    m_combo.clear();
}

void ComboList::AddItem(const QString &item)
{
    m_combo.addItem(item);
}

void ComboList::setListIndex(int index)
{
    if (index < -1 || index >= m_combo.count())
        basic::raise(basic::InvalidPropertyValue);
    m_combo.setCurrentIndex(index);
}
