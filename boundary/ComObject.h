// What every object at the boundary has in common: its life, and the interfaces that it answers to.
#pragma once

#include "boundary/Results.h"

#include <atomic>
#include <exception>
#include <unknwn.h>

namespace acg
{

/// The objects that live and the locks on factories: the library can't be unloaded before all are gone.
inline std::atomic<long> Uses = 0;

/// Gives no object, and the reason.
inline HRESULT NoObject(void** Object, HRESULT Reason)
{
    if (Object == nullptr) {
        return E_POINTER;
    }
    *Object = nullptr;
    return Reason;
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored                                                                               \
    "-Wnon-virtual-dtor" // interfaces have no destructor; nobody deletes through one

/// An object with these interfaces; the first stands for the object itself. It is made with one reference,
/// and deletes itself with the last.
template <class... Interfaces>
class ComObject : public Interfaces...
{
public:
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    STDMETHODIMP QueryInterface(REFIID Wanted, void** Object) override
    {
        if (Object == nullptr) {
            return E_POINTER;
        }
        const struct {
            const IID& Id;
            IUnknown* Interface;
        } offered[] = {{__uuidof(Interfaces), static_cast<Interfaces*>(this)}...};
        for (const auto& one : offered) {
            if (Wanted == __uuidof(IUnknown) || Wanted == one.Id) {
                AddRef();
                *Object = one.Interface;
                return S_OK;
            }
        }
        return NoObject(Object, E_NOINTERFACE);
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
    ComObject() { ++Uses; }
    virtual ~ComObject() { --Uses; }

private:
    std::atomic<ULONG> m_references = 1;
};

#pragma GCC diagnostic pop

/// Makes an object and gives the wanted interface of it; none, and null, if it has no such interface.
template <class Object>
HRESULT Create(REFIID Wanted, void** Created) noexcept
{
    // The runtime keeps something for each thread that throws, and ends the process if there is no memory for
    // it then. An object stays on the thread that makes it; so asking for it here has it made early.
    static_cast<void>(std::uncaught_exceptions());
    return Guarded([&] {
        static_cast<void>(NoObject(Created, S_OK)); // so it is null where there is no memory
        auto* const object = new Object;
        const HRESULT result = object->QueryInterface(Wanted, Created);
        object->Release();
        return result;
    });
}

} // namespace acg
