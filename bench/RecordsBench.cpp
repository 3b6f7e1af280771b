// Records described at run time beside the same work written by hand.

#include "Cross/Util/RunTimeStructCopier.h"
#include "bench/Ratio.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <vector>

using namespace RunTimeStruct;

namespace {

struct Step {
    std::size_t size, sourceOffset, destOffset;
};

// Two layouts with the same members in opposite order, so that no two copies become one.
struct Records {
    explicit Records(unsigned int count) {
        TypeInfo const * const types[] = {GetTypeInfo_float(), GetTypeInfo_Math_Vector3f(),
                                          GetTypeInfo_Math_Matrix43f(), GetTypeInfo_Math_Vector2f()};
        Layout forward, backward;
        for (unsigned int i = 0; i < count; ++i)
            forward.AddMember(Dictionary::Key(i + 1), types[i % std::size(types)], 1);
        for (unsigned int i = count; i > 0; --i) {
            LayoutMember const & member = *forward.GetMember(i - 1);
            backward.AddMember(member.key, member.type, member.length);
        }
        copier.AddLayout(forward, backward);
        source.Setup(forward);
        dest.Setup(backward);
        std::memset(source.GetData(), 1, source.GetSize());
        for (unsigned int i = 0; i < count; ++i) {
            LayoutMember const & member = *forward.GetMember(i);
            steps.push_back({member.type->GetSize(), member.offset, backward.FindMember(member.key)->offset});
        }
    }

    Copier copier;
    Buffer source, dest;
    std::vector<Step> steps;
};

void addCopies(unsigned int count) {
    bench::AddPair(
        "copy of " + std::to_string(count) + " members", 1.3,
        [count](benchmark::State & state) {
            Records records(count);
            for (auto _ : state) {
                records.copier.Copy(records.source, records.dest);
                benchmark::ClobberMemory();
            }
        },
        [count](benchmark::State & state) {
            Records records(count);
            for (auto _ : state) {
                auto const * const from = static_cast<char const *>(records.source.GetData());
                auto * const to = static_cast<char *>(records.dest.GetData());
                for (Step const & step : records.steps)
                    std::memcpy(to + step.destOffset, from + step.sourceOffset, step.size);
                benchmark::ClobberMemory();
            }
        });
}

constexpr std::size_t c_buffers = 1000;

// What reaching a member would cost if its place were known.
struct PlainBuffer {
    unsigned int layoutID;
    char * data;
};

void reach(benchmark::State & state) {
    Records const records(8);
    std::vector<Buffer> const buffers(c_buffers, records.source);
    Ref const ref(Dictionary::Key(3), GetTypeInfo_Math_Matrix43f(), 1);
    for (auto _ : state)
        for (Buffer const & buffer : buffers)
            benchmark::DoNotOptimize(buffer.GetVoidPtr(ref));
}

void reachPeer(benchmark::State & state) {
    std::vector<PlainBuffer> const buffers(c_buffers, {7, static_cast<char *>(std::malloc(64))});
    unsigned int lastID = 7, offset = 16;
    benchmark::DoNotOptimize(lastID);
    benchmark::DoNotOptimize(offset);
    for (auto _ : state)
        for (PlainBuffer const & buffer : buffers)
            benchmark::DoNotOptimize(buffer.layoutID == lastID ? buffer.data + offset : nullptr);
    std::free(buffers.front().data);
}

} // namespace

int main(int argc, char ** argv) {
    addCopies(8);
    addCopies(32);
    bench::AddPair("reaching a member of 1000 buffers", 2.0, reach, reachPeer);
    return bench::Run(argc, argv);
}
