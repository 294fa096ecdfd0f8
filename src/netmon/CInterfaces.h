#pragma once

#include "netmon/CInterface.h"

#include <QVariant>

#include <memory>
#include <vector>

// The records of one read of the interface table, in the table's order.
// Records are shared: a caller may keep one alive after its collection is
// gone.
class CInterfaces {
public:
    using Record = std::shared_ptr<CInterface>;

    // Appends the record held by `item` and clears the caller's variable:
    // the reader's loop relies on that to start a new record for each row.
    Record Add(Record &item);

    // 1-based. A position outside 1..Count, or an index that is not a
    // number, is a failure of the collection (run-time error 5; 13 for a
    // value that is no number at all).
    Record Item(const QVariant &index) const;
    basic::Long Count() const;
    void Remove(const QVariant &index); // nothing in the program calls it

    // The for-each walk.
    std::vector<Record> NewEnum() const { return mCol; }
    std::vector<Record>::const_iterator begin() const { return mCol.begin(); }
    std::vector<Record>::const_iterator end() const { return mCol.end(); }

private:
    std::size_t position(const QVariant &index) const;

    std::vector<Record> mCol;
};
