#pragma once

#include <memory>
#include <utility>

// Work posted to another thread through Qt's event queue is synchronised by locks inside Qt.
// ThreadSanitizer cannot see them when Qt is not built with it, so under ThreadSanitizer each
// hand-off also declares the edge Qt provides: the posted functor releases on its own address
// once it is fully built (Qt builds it in place), and the receiving thread acquires there
// before touching it. Elsewhere this is a plain functor.
#if defined(__SANITIZE_THREAD__)
extern "C" void __tsan_acquire(void *address);
extern "C" void __tsan_release(void *address);
#endif

template <typename Work>
class VextilThreadHandoff {
public:
    explicit VextilThreadHandoff(Work work) : m_work(std::make_shared<Work>(std::move(work))) { release(); }
    VextilThreadHandoff(const VextilThreadHandoff &other) : m_work(other.m_work) { release(); }
    VextilThreadHandoff(VextilThreadHandoff &&other) noexcept : m_work(std::move(other.m_work)) { release(); }
    VextilThreadHandoff &operator=(const VextilThreadHandoff &) = delete;
    VextilThreadHandoff &operator=(VextilThreadHandoff &&) = delete;

    void operator()()
    {
#if defined(__SANITIZE_THREAD__)
        __tsan_acquire(this);
#endif
        (*m_work)();
    }

private:
    void release()
    {
#if defined(__SANITIZE_THREAD__)
        __tsan_release(this);
#endif
    }

    std::shared_ptr<Work> m_work;
};
