// What a hash store answers with: it wraps the stored object, which may be null.
#pragma once

class CZelHashNode {
public:
    void *RHNGetObject() const { return m_object; }

private:
    friend class CZelHashStore;
    void *m_object = nullptr;
};
