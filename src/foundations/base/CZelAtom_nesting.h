// One level of lists and objects on the way down into a nest, for operations that recurse: copying,
// comparing, printing. Below CZelAtom::MAX_NESTING levels an operation stops, which is reported once for
// the whole of it.
//
// Threads: the count is per thread.
#pragma once

class CZelNesting {
public:
    explicit CZelNesting(const char *operation);
    CZelNesting(const CZelNesting &) = delete;
    CZelNesting &operator=(const CZelNesting &) = delete;
    ~CZelNesting();

    bool TooDeep() const { return m_tooDeep; }

private:
    bool m_tooDeep;
};
