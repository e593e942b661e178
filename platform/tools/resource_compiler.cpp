#include <cstdio>
#include <exception>
#include <fstream>
#include <stdexcept>

#include "platform/tools/script_parser.h"
#include "platform/tools/script_tokens.h"
#include "platform/tools/table_writer.h"

namespace {

void WriteFile(const std::string& path, const std::string& text) {
    std::ofstream stream(path, std::ios::binary);
    stream << text;
    if (!stream.flush()) throw std::runtime_error(path + ": cannot be written");
}

// What the source is made from, in the form that a build tool reads.
std::string Dependencies(const std::string& source, const TokenizedScript& tokens,
                         const ResourceScript& script) {
    std::string text = source + ":";
    for (const std::string& file : tokens.files)
        text += " " + file;
    for (const DataDescription& data : script.data)
        text += " " + data.file;
    return text + "\n";
}

void Compile(const std::string& path, const std::string& source, const std::string& dependencies) {
    const TokenizedScript tokens = ReadScript(path);
    const ResourceScript script = ParseScript(tokens);
    WriteFile(source, WriteTable(script, path));
    WriteFile(dependencies, Dependencies(source, tokens, script));
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr,
                     "usage: resource_compiler <script.rc> <source.cpp> <dependencies.d>\n");
        return 2;
    }
    try {
        Compile(argv[1], argv[2], argv[3]);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
