#pragma once

#include <algorithm>
#include <cstddef>
#include <exception>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "Locks.h"

#ifndef _WIN32
#include <condition_variable>
#include <thread>
#endif

/// Does the same work for many inputs on all processors and takes the answers in the order of the inputs. At most a few
/// answers wait to be taken, however many inputs there are. Where the system has no more threads to give, those that it
/// gave do the work, or this one alone.
/// @param work  Called with the number of an input, by any thread, several at a time.
/// @param take  Called with each answer, by this thread.
/// What `work` throws is thrown here.
template <class Answer>
void DoInOrder(std::size_t count, const std::function<Answer(std::size_t)>& work,
               const std::function<void(Answer&&)>& take);

namespace ordered_work {
#ifndef _WIN32
/// Runs a function on a new thread. Throws when there is none.
using StartThread = std::function<std::jthread(const std::function<void()>&)>;

template <class Answer>
class Crew
{
public:
    Crew(std::size_t count, std::size_t workers, const std::function<Answer(std::size_t)>& work,
         const StartThread& start)
        : m_count(count), m_waiting(workers * kWaitingPerWorker), m_work(work)
    {
        m_threads.reserve(workers);
        try {
            for (std::size_t worker = 0; worker < workers; ++worker) {
                m_threads.push_back(start([this] { Work(); }));
            }
        } catch (const std::exception&) {
            // Those that were started do it all.
        }
    }
    ~Crew()
    {
        {
            const std::lock_guard lock(m_lock);
            m_next = m_count;
        }
        m_changed.notify_all();
    }
    Crew(const Crew&) = delete;
    Crew& operator=(const Crew&) = delete;

    Answer TakeNext()
    {
        if (m_threads.empty()) {
            return m_work(m_taken++);
        }
        std::unique_lock lock(m_lock);
        std::optional<Answer>& slot = m_waiting[m_taken % m_waiting.size()];
        m_changed.wait(lock, [&] { return slot.has_value() || m_failure != nullptr; });
        if (m_failure != nullptr) {
            std::rethrow_exception(m_failure);
        }
        Answer answer = std::move(*slot);
        slot.reset();
        ++m_taken;
        m_changed.notify_all();
        return answer;
    }

private:
    static constexpr std::size_t kWaitingPerWorker = 16;

    void Work()
    {
        std::unique_lock lock(m_lock);
        for (;;) {
            m_changed.wait(lock, [this] { return m_next >= m_count || m_next < m_taken + m_waiting.size(); });
            if (m_next >= m_count) {
                return;
            }
            const std::size_t input = m_next++;
            lock.unlock();
            std::optional<Answer> answer;
            std::exception_ptr failure;
            try {
                answer = m_work(input);
            } catch (...) {
                failure = std::current_exception();
            }
            lock.lock();
            if (failure != nullptr) {
                m_failure = failure;
                m_next = m_count;
            } else {
                m_waiting[input % m_waiting.size()] = std::move(answer);
            }
            m_changed.notify_all();
        }
    }

    const std::size_t m_count;
    std::mutex m_lock;
    std::condition_variable m_changed;
    std::vector<std::optional<Answer>> m_waiting; // by the number of the input, modulo their number
    std::size_t m_next = 0;
    std::size_t m_taken = 0;
    std::exception_ptr m_failure;
    const std::function<Answer(std::size_t)>& m_work;
    std::vector<std::jthread> m_threads; // the last member: they end before the others go
};

template <class Answer>
void DoOnThreads(std::size_t count, std::size_t workers, const std::function<Answer(std::size_t)>& work,
                 const std::function<void(Answer&&)>& take, const StartThread& start)
{
    Crew<Answer> crew(count, workers, work, start);
    for (std::size_t input = 0; input < count; ++input) {
        take(crew.TakeNext());
    }
}
#endif
} // namespace ordered_work

template <class Answer>
void DoInOrder(std::size_t count, const std::function<Answer(std::size_t)>& work,
               const std::function<void(Answer&&)>& take)
{
#ifndef _WIN32
    const std::size_t workers = std::min<std::size_t>(count, std::max(1U, std::thread::hardware_concurrency()));
    if (workers > 1) {
        ordered_work::DoOnThreads<Answer>(count, workers, work, take,
                                          [](const std::function<void()>& run) { return std::jthread(run); });
        return;
    }
#endif
    for (std::size_t input = 0; input < count; ++input) {
        take(work(input));
    }
}
