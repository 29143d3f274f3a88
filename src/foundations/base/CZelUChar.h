// The owner of a data atom's bytes. The block comes from malloc.
#pragma once

#include "foundations/base/CZelPool.h"
#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelUChar {
public:
    ZEL_POOLED

    CZelUChar(unsigned char *data, int length) : m_data(data), m_length(length) {}  // takes over
    CZelUChar(const CZelUChar &other);
    CZelUChar &operator=(const CZelUChar &) = delete;
    ~CZelUChar();

    unsigned char *RUCData() const { return m_data; }
    int RUCLength() const { return m_length; }

    // Detaches the block: the caller frees it. *length, if given, gets its length. Null when there is none.
    unsigned char *RUCTakeData(int *length);

private:
    unsigned char *m_data;
    int m_length;
};
