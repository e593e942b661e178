#include "headless/references/census.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <typeinfo>

#include "host/animatable.h"
#include "host/heap.h"

namespace headless {
namespace {

std::size_t heapBlocks = 0;

// A plain pointer: it outlives every object, whenever the last of them goes.
InterfaceServer* newest = nullptr;

std::string NameInSource(const InterfaceServer& object) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(typeid(object).name(), nullptr, nullptr, &status), &std::free);
    return name ? name.get() : typeid(object).name();
}

std::string NameOfClass(InterfaceServer& object) {
    HostString name;
    if (auto* animatable = dynamic_cast<Animatable*>(&object)) animatable->GetClassName(name);
    return name.empty() ? NameInSource(object) : name;
}

}  // namespace

std::map<std::string, std::size_t> LiveObjects::CountByClass() {
    std::map<std::string, std::size_t> counts;
    for (InterfaceServer* object = newest; object != nullptr; object = object->previousAlive_)
        ++counts[NameOfClass(*object)];
    return counts;
}

void LiveObjects::Add(InterfaceServer& object) {
    object.previousAlive_ = newest;
    if (newest != nullptr) newest->nextAlive_ = &object;
    newest = &object;
}

void LiveObjects::Remove(InterfaceServer& object) {
    if (object.previousAlive_ != nullptr) object.previousAlive_->nextAlive_ = object.nextAlive_;
    if (object.nextAlive_ != nullptr)
        object.nextAlive_->previousAlive_ = object.previousAlive_;
    else
        newest = object.previousAlive_;
}

std::size_t HeapBlocks() {
    return heapBlocks;
}

}  // namespace headless

InterfaceServer::InterfaceServer() {
    headless::LiveObjects::Add(*this);
}

InterfaceServer::~InterfaceServer() {
    headless::LiveObjects::Remove(*this);
}

void* MaxHeapOperators::operator new(std::size_t size) {
    void* block = ::operator new(size);
    ++headless::heapBlocks;
    return block;
}

void MaxHeapOperators::operator delete(void* block, std::size_t) noexcept {
    if (block == nullptr) return;
    --headless::heapBlocks;
    ::operator delete(block);
}
