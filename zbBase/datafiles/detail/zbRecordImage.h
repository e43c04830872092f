// The head-and-body file of CzbFileMgrB as bytes: the reader behind OpenFile and the writer
// behind MakeFile, on any source and sink, so a buffer in memory reads as a file does.
//
// The read side is one image of the bytes kept: the head at its start, the bodies one after
// the other behind it. m_readHead is the start of that image and owns it (malloc'd), and
// every entry of m_readBodies points into it; the image is released once, through the head.
#pragma once

#include "zbBase/datafiles/CzbFileMgrB.h"
#include "zbBase/datafiles/detail/zbByteSink.h"
#include "zbBase/datafiles/detail/zbByteSource.h"

namespace zbBase {
namespace detail {

// Drops the read side, then fills it from the source: the head when the source holds all of
// it, then each whole body. The image grows as bytes arrive (`lengthHint`, what the source
// says it holds, only sizes the first piece); with a body size of 0 no byte behind the head is
// read. true when the source held at least one byte; false, with the read side empty, when it
// held none, when it holds more than 2^31-1 bytes (a hint above that fails at once) or when
// memory ran out.
bool readRecordImage(CzbFileMgrB& mgr, ByteSource& source, unsigned long long lengthHint);
// The head (zero bytes when none was set), then every body; false at the first failed write.
bool writeRecords(const CzbFileMgrB& mgr, ByteSink& sink);

} // namespace detail
} // namespace zbBase
