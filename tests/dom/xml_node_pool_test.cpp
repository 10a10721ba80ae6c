#include "dom/xml_node_pool.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <set>
#include <vector>

using namespace QmXmlLib10;

TEST(XmlNodePoolTest, BlocksAreDistinctAlignedAndReusedPerSize) {
    CXmlNodePool pool;
    EXPECT_EQ(pool.GetReservedBytes(), 0u);  // nothing until the first block
    std::set<void*> seen;
    std::vector<void*> small;
    std::vector<void*> big;
    for (int i = 0; i < 1000; ++i) {
        void* a = pool.Allocate(24);
        void* b = pool.Allocate(88);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(a) % 8, 0u);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(b) % 8, 0u);
        EXPECT_TRUE(seen.insert(a).second);
        EXPECT_TRUE(seen.insert(b).second);
        // Every byte is usable: writing a whole block must not touch another.
        std::memset(a, 0xa5, 24);
        std::memset(b, 0x5a, 88);
        small.push_back(a);
        big.push_back(b);
    }
    for (void* a : small) EXPECT_EQ(*static_cast<unsigned char*>(a), 0xa5);
    EXPECT_EQ(pool.GetLiveCount(), 2000u);
    EXPECT_GE(pool.GetReservedBytes(), 1000u * (24 + 88));
    EXPECT_GT(pool.GetChunkCount(), 1u);  // chunks grow from a small first one

    // Released blocks come back for the same size only, and no new chunk is taken.
    const std::size_t reserved = pool.GetReservedBytes();
    for (void* b : big) pool.Release(b, 88);
    EXPECT_EQ(pool.GetLiveCount(), 1000u);
    std::set<void*> reusedBig(big.begin(), big.end());
    for (int i = 0; i < 1000; ++i) EXPECT_EQ(reusedBig.count(pool.Allocate(88)), 1u);
    EXPECT_EQ(reusedBig.count(pool.Allocate(24)), 0u);
    EXPECT_EQ(pool.GetReservedBytes(), reserved);
}

TEST(XmlNodePoolTest, ResetFreesChunksOnlyWhenNothingIsLive) {
    CXmlNodePool pool;
    void* a = pool.Allocate(48);
    pool.Reset();  // a block is in use: kept
    EXPECT_GT(pool.GetReservedBytes(), 0u);
    std::memset(a, 0, 48);
    pool.Release(a, 48);
    pool.Reset();
    EXPECT_EQ(pool.GetReservedBytes(), 0u);
    EXPECT_EQ(pool.GetChunkCount(), 0u);
    // Usable again afterwards, without handing out the freed block.
    void* b = pool.Allocate(48);
    std::memset(b, 1, 48);
    EXPECT_EQ(pool.GetLiveCount(), 1u);
    pool.Release(b, 48);
}

TEST(XmlNodePoolTest, ManyMegabytesSpanHugePageChunks) {
    CXmlNodePool pool;
    std::vector<void*> blocks;
    for (int i = 0; i < 200000; ++i) {
        void* block = pool.Allocate(88);
        std::memset(block, i & 0xff, 88);
        blocks.push_back(block);
    }
    for (std::size_t i = 0; i < blocks.size(); ++i)
        ASSERT_EQ(static_cast<unsigned char*>(blocks[i])[87], i & 0xff);
    // 17.6 MB of blocks with little waste on top.
    EXPECT_LT(pool.GetReservedBytes(), 200000u * 88 + (std::size_t{5} << 20));
    for (void* block : blocks) pool.Release(block, 88);
    EXPECT_EQ(pool.GetLiveCount(), 0u);
}

TEST(XmlNodePoolTest, FreedHugeChunksAreKeptForTheNextPoolUpToTheLimit) {
    const std::size_t savedLimit = CXmlNodePool::GetCacheLimit();
    const std::size_t huge = std::size_t{2} << 20;
    CXmlNodePool::SetCacheLimit(0);
    EXPECT_EQ(CXmlNodePool::GetCachedBytes(), 0u);
    CXmlNodePool::SetCacheLimit(3 * huge + huge / 2);  // whole chunks only: three
    std::set<void*> firstChunks;
    {
        CXmlNodePool pool;
        // About 10 MB: the first 2 MiB go to growing chunks, then five or so huge ones.
        std::vector<void*> blocks;
        for (int i = 0; i < 100000; ++i) blocks.push_back(pool.Allocate(100));
        for (void* block : blocks) {
            std::memset(block, 0x11, 100);
            firstChunks.insert(reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(block) & ~(huge - 1)));
            pool.Release(block, 100);
        }
        EXPECT_GE(pool.GetChunkCount(), 5u);
    }
    EXPECT_EQ(CXmlNodePool::GetCachedBytes(), 3 * huge);

    {
        // The next pool starts from the kept chunks once it reaches full-size ones.
        CXmlNodePool pool;
        std::vector<void*> blocks;
        bool reused = false;
        for (int i = 0; i < 60000; ++i) {
            void* block = pool.Allocate(100);
            std::memset(block, 0x22, 100);
            reused |= firstChunks.count(reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(block) & ~(huge - 1))) > 0;
            blocks.push_back(block);
        }
        EXPECT_TRUE(reused);
        EXPECT_LT(CXmlNodePool::GetCachedBytes(), 3 * huge);
        for (void* block : blocks) EXPECT_EQ(static_cast<unsigned char*>(block)[99], 0x22);
        for (void* block : blocks) pool.Release(block, 100);
    }

    CXmlNodePool::SetCacheLimit(huge);  // lowering frees the surplus at once
    EXPECT_EQ(CXmlNodePool::GetCachedBytes(), huge);
    CXmlNodePool::SetCacheLimit(0);
    EXPECT_EQ(CXmlNodePool::GetCachedBytes(), 0u);
    CXmlNodePool::SetCacheLimit(savedLimit);
    EXPECT_EQ(CXmlNodePool::GetCacheLimit(), savedLimit);
}
