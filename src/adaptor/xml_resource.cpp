#include "adaptor/xml_resource.h"

#include <string_view>

#include "platform/win32.h"
#include "resources/resource_ids.h"

namespace {

constexpr const char* kXmlType = "XMLFile";

// All bytes of the resource, which stay the module's.
std::string_view ResourceText(int id) {
    const HMODULE module = theModule;
    const HRSRC resource = FindResourceA(module, MAKEINTRESOURCEA(id), kXmlType);
    if (!resource) return {};
    const DWORD size = SizeofResource(module, resource);
    const HGLOBAL loaded = LoadResource(module, resource);
    const void* const bytes = loaded ? LockResource(loaded) : nullptr;
    if (!bytes) return {};
    return {static_cast<const char*>(bytes), size};
}

}  // namespace

XMLNode LoadXMLResource(int id) {
    return XMLNode(ResourceText(id));
}
