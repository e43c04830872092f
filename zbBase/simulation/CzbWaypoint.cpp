#include "zbBase/simulation/CzbWaypoint.h"

#include <algorithm>
#include <cstddef>

namespace zbBase {

namespace {
const int kGrowth = 100;
} // namespace

CzbWaypoint::CzbWaypoint() : m_capacity(0), m_count(0), m_points(nullptr) {}

CzbWaypoint::CzbWaypoint(const CzbWaypoint& other) : m_capacity(0), m_count(0), m_points(nullptr) {
    assignFrom(other);
}

CzbWaypoint::~CzbWaypoint() {
    delete[] m_points;
}

void CzbWaypoint::clear() {
    delete[] m_points;
    m_points = nullptr;
    m_capacity = 0;
    m_count = 0;
}

int CzbWaypoint::size() {
    return m_count;
}

zbVector3d& CzbWaypoint::operator[](unsigned int index) {
    return m_points[index];
}

void CzbWaypoint::secureMemory() {
    // zbVector3d's constructor zeroes every point.
    zbVector3d* block = new zbVector3d[static_cast<size_t>(m_capacity) + kGrowth];
    std::copy(m_points, m_points + m_capacity, block);
    delete[] m_points;
    m_points = block;
    m_capacity += kGrowth;
}

void CzbWaypoint::pointAdd(zbVector3d point) {
    if (m_count + 1 > m_capacity) {
        secureMemory();
    }
    m_points[m_count] = point;
    m_count += 1;
}

void CzbWaypoint::pointInsert(unsigned int index, zbVector3d point) {
    if (index >= static_cast<unsigned int>(m_count)) {
        pointAdd(point);
        return;
    }
    if (m_count + 1 > m_capacity) {
        secureMemory();
    }
    std::copy_backward(m_points + index, m_points + m_count, m_points + m_count + 1);
    m_points[index] = point;
    m_count += 1;
}

void CzbWaypoint::pointDelete(unsigned int index) {
    if (index >= static_cast<unsigned int>(m_count)) {
        return;
    }
    std::copy(m_points + index + 1, m_points + m_count, m_points + index);
    m_count -= 1;
}

CzbWaypoint& CzbWaypoint::operator=(CzbWaypoint& other) {
    assignFrom(other);
    return *this;
}

void CzbWaypoint::assignFrom(const CzbWaypoint& other) {
    const int n = other.m_count;
    if (n == 0) {
        clear();
        return;
    }
    const int capacity = (n / kGrowth + 1) * kGrowth;
    // The new block is filled before the old one goes, so assigning a list to itself keeps
    // its points and a failed allocation changes nothing.
    zbVector3d* block = new zbVector3d[static_cast<size_t>(capacity)];
    std::copy(other.m_points, other.m_points + n, block);
    delete[] m_points;
    m_points = block;
    m_capacity = capacity;
    m_count = n;
}

} // namespace zbBase
