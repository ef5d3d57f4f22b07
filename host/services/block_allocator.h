// The block allocator of balloc and bfree: what is outstanding is known by the file and line that asked.
#ifndef TARN_HOST_SERVICES_BLOCK_ALLOCATOR_H
#define TARN_HOST_SERVICES_BLOCK_ALLOCATOR_H

#include <cstddef>
#include <string>
#include <vector>

namespace tarn::host {

struct OutstandingBlocks {
    std::string file;
    int line;
    std::size_t count;
    std::size_t bytes;
};

// The blocks that were allocated and not freed, one entry for each place that allocated some.
std::vector<OutstandingBlocks> outstanding_blocks();

// Logs an error line for each such place and returns the number of blocks.
std::size_t report_outstanding_blocks();

}  // namespace tarn::host

#endif
