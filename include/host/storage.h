#pragma once

#include <cstdint>

#include "host/host_api.h"

enum IOResult { IO_OK, IO_END, IO_ERROR };

// Chunks with 16-bit ids that nest, each holding either bytes or further chunks. All numbers are
// little-endian, as the writer lays them out.
class HOST_API ISave {
  public:
    virtual ~ISave();
    virtual IOResult BeginChunk(std::uint16_t id) = 0;
    virtual IOResult EndChunk() = 0;
    virtual IOResult Write(const void* bytes, std::uint32_t count, std::uint32_t* written) = 0;
    virtual IOResult WriteCString(const char* text) = 0;  // the text with its closing NUL
};

class HOST_API ILoad {
  public:
    virtual ~ILoad();
    virtual IOResult OpenChunk() = 0;  // IO_END when the level has no next chunk
    virtual std::uint16_t CurChunkID() = 0;
    virtual IOResult CloseChunk() = 0;  // skips what was not read

    // Fails, and reads what there is, if the chunk holds fewer bytes.
    virtual IOResult Read(void* bytes, std::uint32_t count, std::uint32_t* read) = 0;

    // The text of a string chunk; it stays the loader's and valid until the next such call.
    virtual IOResult ReadCStringChunk(char** text) = 0;
};
