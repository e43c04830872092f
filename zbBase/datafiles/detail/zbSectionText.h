// The section file of CzbFileMgr as bytes: the parser and the grouping behind OpenFile and the
// writer behind MakeFile, on any source and sink, so a buffer in memory reads as a file does.
//
// Grouping keeps each non-empty title once, in order of first appearance, and the records of a
// title in table order; it takes n log n time through a map from title to group, whatever the
// number of titles.
#pragma once

#include "zbBase/datafiles/CzbFileMgr.h"
#include "zbBase/datafiles/detail/zbByteSink.h"
#include "zbBase/datafiles/detail/zbByteSource.h"

#include <vector>

namespace zbBase {
namespace detail {

// Appends one record for every line of the source that is no header, as read; not grouped.
// Memory exhaustion raises std::bad_alloc with the records so far appended.
void readSectionLines(std::vector<_Attribute>& table, ByteSource& source);
// Groups the table by title and drops the records without a title. Memory exhaustion raises
// std::bad_alloc with the table unchanged.
void groupByTitle(std::vector<_Attribute>& table);
// Writes "[title]" and then "name = value" for each record of the title, title by title in
// the grouped order, each line with a line end; false at the first write that fails. Memory
// exhaustion raises std::bad_alloc before anything is written.
bool writeSectionText(const std::vector<_Attribute>& table, ByteSink& sink);

} // namespace detail
} // namespace zbBase
