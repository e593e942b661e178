#include "headless/memory_chunks.h"

#include "storage/byte_sink.h"
#include "storage/byte_source.h"
#include "storage/chunk_reader.h"
#include "storage/chunk_writer.h"

namespace headless {

std::vector<std::byte> SavedBytes(const std::function<IOResult(ISave*)>& save) {
    MemorySink sink;
    ChunkWriter writer(sink);
    save(&writer);
    writer.CloseAll();
    return sink.Take();
}

IOResult LoadBytes(std::span<const std::byte> bytes, const std::function<IOResult(ILoad*)>& load) {
    MemorySource source(bytes);
    ChunkReader reader(source);
    return load(&reader);
}

}  // namespace headless
