#pragma once

#include <QLatin1String>
#include <QString>
#include <QtGlobal>

#include <algorithm>
#include <atomic>
#include <initializer_list>
#include <vector>

/// Counts what Qt prints while it lives, on any thread, and prints it all the same. One at a time.
class MessageCounter
{
public:
    /// A text that contains one of \a uncounted is only printed.
    explicit MessageCounter(std::initializer_list<const char*> uncounted = {})
        : m_uncounted(uncounted)
    {
        Q_ASSERT(!s_living);
        s_living = this;
        m_printer = qInstallMessageHandler(handle);
    }

    ~MessageCounter()
    {
        qInstallMessageHandler(m_printer);
        s_living = nullptr;
    }

    int count() const { return m_count; }
    void reset() { m_count = 0; }

private:
    Q_DISABLE_COPY(MessageCounter)

    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        if (!s_living->letsThrough(text))
            ++s_living->m_count;
        s_living->m_printer(type, context, text);
    }

    bool letsThrough(const QString& text) const
    {
        return std::any_of(m_uncounted.begin(), m_uncounted.end(), [&text](const char* fragment) {
            return text.contains(QLatin1String(fragment));
        });
    }

    inline static MessageCounter* s_living = nullptr;

    const std::vector<const char*> m_uncounted;
    std::atomic<int> m_count{0};
    QtMessageHandler m_printer = nullptr;
};
