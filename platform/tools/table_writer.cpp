#include "platform/tools/table_writer.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>

#include "platform/tools/script_error.h"

namespace {

constexpr int kBytesPerLine = 20;

// Escaped so that no character can be taken for a part of an escape before it.
std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char letter : text) {
        const auto byte = static_cast<unsigned char>(letter);
        if (byte >= 0x20 && byte < 0x7F && letter != '"' && letter != '\\' && letter != '?') {
            quoted += letter;
            continue;
        }
        char octal[5];
        std::snprintf(octal, sizeof octal, "\\%03o", static_cast<unsigned>(byte));
        quoted += octal;
    }
    return quoted + '"';
}

std::string Written(const Area& area) {
    std::ostringstream out;
    out << area.x << ", " << area.y << ", " << area.width << ", " << area.height;
    return out.str();
}

void WriteControls(std::ostream& out, const DialogDescription& dialog, std::size_t index) {
    if (dialog.controls.empty()) return;
    out << "constexpr platform::ControlTemplate controls" << index << "[] = {\n";
    for (const ControlDescription& control : dialog.controls) {
        out << "    {" << Quoted(control.windowClass) << ", " << Quoted(control.text) << ", "
            << control.id << ", " << control.style << "u, " << Written(control.area) << "},\n";
    }
    out << "};\n";
}

void WriteDialogs(std::ostream& out, const ResourceScript& script) {
    if (script.dialogs.empty()) return;
    for (std::size_t i = 0; i < script.dialogs.size(); ++i) {
        WriteControls(out, script.dialogs[i], i);
    }
    out << "constexpr platform::DialogTemplate dialogs[] = {\n";
    for (std::size_t i = 0; i < script.dialogs.size(); ++i) {
        const DialogDescription& dialog = script.dialogs[i];
        out << "    {" << dialog.id << ", " << Quoted(dialog.caption) << ", " << dialog.style
            << "u, " << Written(dialog.area) << ", ";
        out << (dialog.controls.empty() ? "{}" : "controls" + std::to_string(i)) << "},\n";
    }
    out << "};\n";
}

std::string ReadBytes(const DataDescription& data, const std::string& path) {
    std::ifstream stream(data.file, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    if (!stream) throw ScriptError(path, data.line, "cannot read '" + data.file + "'");
    return bytes;
}

void WriteBytes(std::ostream& out, const std::string& bytes, std::size_t index) {
    if (bytes.empty()) return;
    out << "constexpr unsigned char bytes" << index << "[] = {";
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        out << (at % kBytesPerLine == 0 ? "\n    " : " ")
            << static_cast<unsigned>(static_cast<unsigned char>(bytes[at])) << ',';
    }
    out << "\n};\n";
}

void WriteData(std::ostream& out, const ResourceScript& script, const std::string& path) {
    if (script.data.empty()) return;
    std::ostringstream entries;
    for (std::size_t i = 0; i < script.data.size(); ++i) {
        const DataDescription& data = script.data[i];
        const std::string bytes = ReadBytes(data, path);
        WriteBytes(out, bytes, i);
        entries << "    {" << data.id << ", " << Quoted(data.type) << ", "
                << (bytes.empty() ? "{}" : "bytes" + std::to_string(i)) << "},\n";
    }
    out << "constexpr platform::DataResource data[] = {\n" << entries.str() << "};\n";
}

}  // namespace

std::string WriteTable(const ResourceScript& script, const std::string& path) {
    std::ostringstream out;
    out << "#include \"platform/module.h\"\n\nnamespace {\n\n";
    WriteDialogs(out, script);
    WriteData(out, script, path);
    out << "constexpr platform::ResourceTable table{" << (script.dialogs.empty() ? "{}" : "dialogs")
        << ", " << (script.data.empty() ? "{}" : "data") << "};\n"
        << "const platform::ResourceRegistration registration(table);\n\n}  // namespace\n";
    return out.str();
}
