#include "store/CZelHandleTable.h"

#include <algorithm>
#include <utility>

#include "foundations/port/CZelError.h"

namespace {

long numberIn(const CZelListable *node) {
    return static_cast<CZelAtom *>(static_cast<const CZelPointer *>(node)->RPData())->RALong();
}

}  // namespace

CZelHandleTable::Block::Block(long first) {
    static_assert(sizeof(Row) == 64);
    for (long i = 0; i < BLOCK; ++i) {
        m_rows[i].m_handle = CZelAtom(first + i);
        m_nodes[i].RPSetData(&m_rows[i].m_handle);
    }
}

CZelHandleTable::CZelHandleTable(long atMost) : m_atMost(atMost) {}

CZelHandleTable::~CZelHandleTable() {
    m_order.RDLSetHead(nullptr);
}

CZelAtom *CZelHandleTable::take() {
    if (m_ready.empty() && !issue())
        return nullptr;
    const long number = m_ready.front();
    m_ready.pop_front();
    return handleAt(number);
}

bool CZelHandleTable::issue() {
    if (!hasRoomFor(m_next + 1))
        return false;
    const long batchEnd = m_next + std::min(AT_ONCE, m_atMost - m_next);
    for (; m_next < batchEnd; ++m_next)
        m_ready.push_back(static_cast<int>(m_next));
    makeBlocks();
    return true;
}

bool CZelHandleTable::hasRoomFor(long count) const {
    if (count <= m_atMost)
        return true;
    ZEL_REPORT(E_RCNoHandle, "CZelHandleTable: no handle is left");
    return false;
}

// For all numbers that are issued.
void CZelHandleTable::makeBlocks() {
    while (end() < m_next) {
        m_blocks.push_back(std::make_unique<Block>(end()));
        m_used.push_back(0);
    }
}

void CZelHandleTable::giveBack(CZelAtom *handle) {
    m_ready.push_back(handle->RAInt());
}

CZelCachedRecord &CZelHandleTable::add(CZelAtom *handle, CZelCachedRecord &&entry) {
    const long number = handle->RALong();
    m_order.RDLInsertBefore(nodeAt(number), nextInOrder(number));
    ++usedIn(number);
    return replace(handle, std::move(entry));
}

CZelCachedRecord &CZelHandleTable::replace(CZelAtom *handle, CZelCachedRecord &&entry) {
    return rowAt(handle->RALong()).CZelCachedRecord::operator=(std::move(entry));
}

void CZelHandleTable::remove(const CZelAtom &handle) {
    const long number = handle.RALong();
    Row *row = usedRow(number);
    if (row == nullptr)
        return;
    m_order.RDLSpliceAndJoinAt(nodeAt(number));
    --usedIn(number);
    replace(&row->m_handle, CZelCachedRecord());
    giveBack(&row->m_handle);
}

CZelHandleTable::Row *CZelHandleTable::usedRow(long number) const {
    if (number < 0 || number >= end())
        return nullptr;
    Row &row = rowAt(number);
    return row.isInUse() ? &row : nullptr;
}

void CZelHandleTable::beginMany(long count) {
    m_blocks.resize(static_cast<std::size_t>((count + BLOCK - 1) / BLOCK));
    m_used.resize(m_blocks.size());
    m_pieces.resize(m_blocks.size());
    m_next = count;
}

void CZelHandleTable::addPiece(long first, const Found *rows, long count, __boolean persistent,
                               unsigned long long arrival) {
    for (long i = 0; i < count; ++i) {
        const long number = first + i;
        const auto block = static_cast<std::size_t>(number / BLOCK);
        if (number % BLOCK == 0)
            m_blocks[block] = std::make_unique<Block>(number);
        rowAt(number).RCRSetFound(rows[i].m_start, rows[i].m_size, arrival + static_cast<unsigned long long>(i),
                                  persistent);
        m_pieces[block].RDLAddToListEnd(nodeAt(number));
        ++m_used[block];
    }
}

// The rest of the last batch is ready.
void CZelHandleTable::endMany() {
    for (CZelDoubleList &piece : m_pieces)
        m_order.RDLTakeFrom(piece);
    m_pieces = {};
    const long batchEnd = std::min((m_next + AT_ONCE - 1) / AT_ONCE * AT_ONCE, m_atMost);
    for (; m_next < batchEnd; ++m_next)
        m_ready.push_back(static_cast<int>(m_next));
    makeBlocks();
}

CZelListable *CZelHandleTable::nextInOrder(long number) const {
    if (m_order.RDLTail() == nullptr || numberIn(m_order.RDLTail()) < number)
        return nullptr;
    const CZelPointer *before = lastBefore(number);
    return before != nullptr ? m_order.RDLGetNext(before) : m_order.RDLHead();
}

// Blocks without entries are skipped, so a nearly empty table costs no long search.
CZelPointer *CZelHandleTable::lastBefore(long number) const {
    for (long block = number / BLOCK, end = number % BLOCK; block >= 0; --block, end = BLOCK) {
        for (long i = end; m_used[static_cast<std::size_t>(block)] > 0 && i-- > 0;) {
            if (rowAt(block * BLOCK + i).isInUse())
                return nodeAt(block * BLOCK + i);
        }
    }
    return nullptr;
}
