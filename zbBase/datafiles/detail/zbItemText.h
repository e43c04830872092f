// The item file of CzbFileDB as bytes: the parser behind openfile and the writer behind
// savefile, on any source and sink, so a buffer in memory reads exactly as a file does.
#pragma once

#include "zbBase/datafiles/CzbFileDB.h"
#include "zbBase/datafiles/detail/zbByteSink.h"
#include "zbBase/datafiles/detail/zbByteSource.h"

namespace zbBase {
namespace detail {

// Merges the item lines of the source into the object. false when memory ran out; the object
// is then as it was before the call.
bool mergeItemText(CzbFileDB& db, ByteSource& source);
// Writes "key=`value`" and a line end for every non-empty item, in order; false at the first
// write that fails.
bool writeItemText(const CzbFileDB& db, ByteSink& sink);

} // namespace detail
} // namespace zbBase
