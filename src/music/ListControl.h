#pragma once

#include <QString>

// The little of a list control that cIDV3::FillComboGenre uses: the tag
// editor's combo box stands behind it, and so can a plain list in a test.
// Any of the three may fail with a basic::RuntimeError.
class ListControl {
public:
    virtual ~ListControl() = default;

    virtual void Clear() = 0;
    virtual void AddItem(const QString &item) = 0;
    virtual void setListIndex(int index) = 0;
};
