#include "foundations/base/CZelUChar.h"

#include <cstdlib>
#include <cstring>

#include "foundations/base/ZelMalloc.h"

CZelUChar::CZelUChar(const CZelUChar &other) : m_data(nullptr), m_length(other.m_length) {
    if (other.m_data == nullptr)
        return;
    m_data = static_cast<unsigned char *>(ZelMalloc(static_cast<std::size_t>(m_length)));
    std::memcpy(m_data, other.m_data, static_cast<std::size_t>(m_length));
}

CZelUChar::~CZelUChar() {
    std::free(m_data);
}

unsigned char *CZelUChar::RUCTakeData(int *length) {
    unsigned char *data = m_data;
    if (length != nullptr)
        *length = m_length;
    m_data = nullptr;
    m_length = 0;
    return data;
}
