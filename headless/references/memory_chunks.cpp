#include "headless/memory_chunks.h"

#include "headless/storage/byte_sink.h"
#include "headless/storage/byte_source.h"
#include "headless/storage/chunk_reader.h"
#include "headless/storage/chunk_writer.h"

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
