#pragma once

#include <type_traits>
#include <vector>

namespace TVL::Util {

// Objects that exist once: made by the first GetInstance, from anywhere and at any moment, and
// destroyed together by the collector, the newest first. An instance that the other side placed is
// used and never destroyed here. Each module that compiles these classes has its own instances, so
// it is built with hidden visibility and without unique symbols (-fno-gnu-unique).
//
// A program that ends or a module that is unloaded without more ado frees its own log and error
// registry and the collector, so what comes up after DestroyAll is no leak. One thread uses all of
// this.

// What the collector knows of an object. The order of the virtual operations is part of the
// contract.
class SingletonReference {
  public:
    // Deletes the one instance of the object's class, if there is one and it is owned here.
    virtual void Destroy() = 0;

    virtual ~SingletonReference() = default;

  protected:
    SingletonReference() = default;
    SingletonReference(const SingletonReference&) = default;
    SingletonReference& operator=(const SingletonReference&) = default;
};

// Base of a class T of which one object is the instance; T has a default constructor, which may use
// other singletons. Further objects of T may exist, and the collector does not know them.
template <class T>
class Singleton : public SingletonReference {
  public:
    // Never null. Nobody keeps the pointer: the instance can be replaced by any call to the other
    // side.
    static T* GetInstance();

    void Destroy() override;

    // Takes the object off the collector's list, where only an owned instance stands.
    ~Singleton() override;

    // Written here, and by the operations of AdaptorInterface that place and clear an outside
    // instance: `external` is true while `instance` belongs to the other side.
    static inline T* instance = nullptr;
    static inline bool external = false;

  protected:
    Singleton() = default;
    Singleton(const Singleton&) = default;
    Singleton& operator=(const Singleton&) = default;
};

// The list of owned instances in the order in which they came into being; the collector itself is
// the first.
class SingletonCollector : public Singleton<SingletonCollector> {
  public:
    void Add(SingletonReference* reference);

    // Removes every entry of `reference`; that there is none is normal.
    void Remove(const SingletonReference* reference);

    // Destroys every entry from the last to the first, at the end the collector itself.
    void DestroyAll();

    const std::vector<SingletonReference*>& GetEntries() const { return entries; }

  private:
    std::vector<SingletonReference*> entries;  // not owned: an entry goes with its object
};

template <class T>
T* Singleton<T>::GetInstance() {
    if (instance != nullptr) return instance;
    instance = new T;
    external = false;
    SingletonCollector::GetInstance()->Add(instance);
    return instance;
}

template <class T>
void Singleton<T>::Destroy() {
    if (external || instance == nullptr) return;
    delete instance;
    instance = nullptr;
}

template <class T>
Singleton<T>::~Singleton() {
    // The collector's list is gone before this base, and its own entry with it.
    if constexpr (!std::is_same_v<T, SingletonCollector>) {
        try {
            SingletonCollector::GetInstance()->Remove(this);
        } catch (...) {  // no memory for the list, which there was none of
        }
    }
}

}  // namespace TVL::Util
