#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

/// What the library and its peer took for the same thing by turns, in seconds. Whatever else the
/// machine does then slows both alike, and medians leave out the rest.
class PairedTimes
{
public:
    /// Calls both functions, which return a time, and changes their order with every call. Returns
    /// the library's time.
    template <typename Library, typename Peer>
    double measure(Library library, Peer peer)
    {
        const bool peerFirst = m_library.size() % 2 == 0;
        double peerTime = peerFirst ? peer() : 0.0;
        const double libraryTime = library();
        if (!peerFirst)
            peerTime = peer();

        m_library.push_back(libraryTime);
        m_peer.push_back(peerTime);
        m_ratio.push_back(libraryTime / peerTime);
        m_difference.push_back(libraryTime - peerTime);
        return libraryTime;
    }

    double ours() const { return median(m_library); }
    double peer() const { return median(m_peer); }
    double ratio() const { return median(m_ratio); }
    double difference() const { return median(m_difference); }

private:
    static double median(std::vector<double> values)
    {
        if (values.empty())
            return 0.0;
        const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
        std::nth_element(values.begin(), middle, values.end());
        return *middle;
    }

    std::vector<double> m_library;
    std::vector<double> m_peer;
    std::vector<double> m_ratio;
    std::vector<double> m_difference;
};
