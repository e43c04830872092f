// CzbWaypoint: a growable array of zbVector3d points for a host's route.
//
// The block grows by exactly 100 points at a time, and an assignment sizes it to
// (count / 100 + 1) * 100; it shrinks only by clear() and by assigning an empty list. When an
// allocation fails, std::bad_alloc reaches the caller and the list stays as it was.
// One thread at a time per list.
#pragma once

#include "zbBase/numeric/zbExport.h"
#include "zbBase/numeric/zbVector.h"

namespace zbBase {

class ZB_API CzbWaypoint {
public:
    CzbWaypoint();
    // A deep copy, as operator= makes it; two lists never share a block.
    CzbWaypoint(const CzbWaypoint& other);
    ~CzbWaypoint();

    // Releases the block: capacity and count 0.
    void clear();
    int size();
    // No range check: valid for an index below size(), until the next change of the list.
    zbVector3d& operator[](unsigned int index);
    void pointAdd(zbVector3d point);
    // Puts the point before the one at index; an index at or past the end appends.
    void pointInsert(unsigned int index, zbVector3d point);
    // Removes the point at index; an index at or past the end is ignored.
    void pointDelete(unsigned int index);
    // Deep copy of other, which is only read.
    CzbWaypoint& operator=(CzbWaypoint& other);

    int m_capacity;       // points the block holds; a multiple of 100
    int m_count;          // points in use
    zbVector3d* m_points; // null exactly when m_capacity is 0

private:
    // Grows the block by 100 zeroed points.
    void secureMemory();
    void assignFrom(const CzbWaypoint& other);
};

} // namespace zbBase
