// What every object at the boundary has in common: reference counting and QueryInterface.
#pragma once

#include "acg/boundary/Results.h"

#include <atomic>
#include <exception>
#include <unknwn.h>

namespace acg
{

/// The number of living objects and of locks on factories: the library can't be unloaded while it isn't 0.
inline std::atomic<long> ModuleReferences = 0;

/// Sets a null object; returns the reason.
inline HRESULT NoObject(void** object, HRESULT reason)
{
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    return reason;
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored                                                                               \
    "-Wnon-virtual-dtor" // interfaces have no destructor; nobody deletes through one

/// An object with these interfaces; the first is its identity. It starts with one reference, and deletes
/// itself at the release of the last.
template <class... Interfaces>
class ComObject : public Interfaces...
{
public:
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    STDMETHODIMP QueryInterface(REFIID id, void** object) override
    {
        if (object == nullptr) {
            return E_POINTER;
        }
        const struct {
            const IID& Id;
            IUnknown* Interface;
        } offered[] = {{__uuidof(Interfaces), static_cast<Interfaces*>(this)}...};
        for (const auto& one : offered) {
            if (id == __uuidof(IUnknown) || id == one.Id) {
                AddRef();
                *object = one.Interface;
                return S_OK;
            }
        }
        return NoObject(object, E_NOINTERFACE);
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
    STDMETHODIMP_(ULONG) Release() override
    {
        const ULONG left = --m_references;
        if (left == 0) {
            delete this;
        }
        return left;
    }

protected:
    ComObject() { ++ModuleReferences; }
    virtual ~ComObject() { --ModuleReferences; }

private:
    std::atomic<ULONG> m_references = 1;
};

#pragma GCC diagnostic pop

/// Creates an object and returns the wanted interface of it: no object, and null, if it has no such
/// interface.
template <class Object>
HRESULT Create(REFIID id, void** created) noexcept
{
    // The runtime allocates a few bytes for each thread that throws, and ends the process if there is no
    // memory for them then. An object stays on the thread that creates it, so they are allocated here.
    static_cast<void>(std::uncaught_exceptions());
    return Guarded([&] {
        static_cast<void>(NoObject(created, S_OK)); // so it is null if there is no memory
        auto* const object = new Object;
        const HRESULT result = object->QueryInterface(id, created);
        object->Release();
        return result;
    });
}

} // namespace acg
