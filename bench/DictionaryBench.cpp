#include "bench/Ratio.h"

#include "Cross/Util/Dictionary.h"

#include <absl/container/flat_hash_map.h>

#include <malloc.h>

#include <memory>
#include <random>
#include <string>
#include <unordered_set>
#include <vector>

namespace {

using Peer = absl::flat_hash_map<std::string, std::uint32_t>;

constexpr std::size_t c_draws = 1 << 17;
constexpr std::size_t c_sizes[] = {1'000, 10'000, 100'000, 1'000'000};

// Distinct names of 8 to 40 characters.
std::vector<std::string> makeNames(std::size_t count, char const * prefix, std::uint32_t seed) {
    static constexpr char c_letters[] = "abcdefghijklmnopqrstuvwxyz_0123456789";
    std::mt19937 random(seed);
    std::uniform_int_distribution<std::size_t> length(8, 40);
    std::uniform_int_distribution<std::size_t> letter(0, sizeof(c_letters) - 2);
    std::unordered_set<std::string> known;
    std::vector<std::string> names;
    while (names.size() < count) {
        std::string name(prefix);
        for (std::size_t rest = length(random) - name.size(); rest > 0; --rest)
            name += c_letters[letter(random)];
        if (known.insert(name).second)
            names.push_back(std::move(name));
    }
    return names;
}

// Questions one behind the other in memory, so that what is timed is the table and not the way to the
// question.
class Questions {
public:
    explicit Questions(std::vector<std::string> const & names) {
        std::mt19937 random(7);
        std::uniform_int_distribution<std::size_t> draw(0, names.size() - 1);
        std::vector<std::size_t> starts;
        for (std::size_t i = 0; i < c_draws; ++i) {
            starts.push_back(texts.size());
            std::string const & name = names[draw(random)];
            texts.append(name.c_str(), name.size() + 1);
        }
        for (std::size_t const start : starts)
            questions.push_back(texts.data() + start);
    }

    char const * operator[](std::size_t i) const { return questions[i % c_draws]; }

private:
    std::string texts;
    std::vector<char const *> questions;
};

std::size_t heapBytes() {
    struct mallinfo2 const info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

void fill(Dictionary & dictionary, std::vector<std::string> const & names) {
    for (std::string const & name : names)
        benchmark::DoNotOptimize(dictionary.GetKey(name.c_str()));
}

void fill(Peer & peer, std::vector<std::string> const & names) {
    std::uint32_t value = 0;
    for (std::string const & name : names)
        benchmark::DoNotOptimize(peer.try_emplace(name.c_str(), value++));
}

// What all cases of one size share.
struct Subject {
    explicit Subject(std::size_t count) : names(makeNames(count, "", 1)) {
        std::size_t const before = heapBytes();
        fill(dictionary, names);
        std::size_t const between = heapBytes();
        fill(peer, names);
        oursBytes = static_cast<double>(between - before) / static_cast<double>(count);
        peerBytes = static_cast<double>(heapBytes() - between) / static_cast<double>(count);
    }

    std::vector<std::string> names;
    Questions existing{names};
    Questions missing{makeNames(c_draws, "no ", 2)}; // no name of the other kind has a blank
    Dictionary dictionary;
    Peer peer;
    double oursBytes;
    double peerBytes;
};

template <class Ask>
bench::Body asking(Questions const & questions, Ask ask) {
    return [&questions, ask](benchmark::State & state) {
        std::size_t i = 0;
        for (auto _ : state)
            benchmark::DoNotOptimize(ask(questions[i++]));
    };
}

template <class Table>
bench::Body building(std::vector<std::string> const & names) {
    return [&names](benchmark::State & state) {
        for (auto _ : state) {
            auto table = std::make_unique<Table>();
            fill(*table, names);
            state.PauseTiming();
            table.reset();
            state.ResumeTiming();
        }
    };
}

void addCases(Subject & subject) {
    std::string const size = std::to_string(subject.names.size());
    auto const find = [&subject](char const * text) {
        Dictionary::Key key;
        return subject.dictionary.FindKey(text, key) ? key.GetValue() : 0;
    };
    auto const intern = [&subject](char const * text) { return subject.dictionary.GetKey(text).GetValue(); };
    // The view spares the peer a second measuring of the text where it compares.
    auto const peerFind = [&subject](char const * text) {
        auto const found = subject.peer.find(absl::string_view(text));
        return found == subject.peer.end() ? 0 : found->second;
    };
    bench::AddPair("existing name, " + size, 1.0, asking(subject.existing, find),
                   asking(subject.existing, peerFind));
    bench::AddPair("existing name by GetKey, " + size, 1.0, asking(subject.existing, intern),
                   asking(subject.existing, peerFind));
    bench::AddPair("missing name, " + size, 1.0, asking(subject.missing, find),
                   asking(subject.missing, peerFind));
    bench::AddPair("building, " + size, 1.25, building<Dictionary>(subject.names),
                   building<Peer>(subject.names));
    bench::AddFigure("bytes per name, ours, " + size, subject.oursBytes, "B");
    bench::AddFigure("bytes per name, peer, " + size, subject.peerBytes, "B");
}

} // namespace

int main(int argc, char ** argv) {
    // Freed memory stays with the process: what is timed are the tables and not the kernel's fresh pages.
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, -1);
    std::vector<std::unique_ptr<Subject>> subjects;
    for (std::size_t const count : c_sizes) {
        subjects.push_back(std::make_unique<Subject>(count));
        addCases(*subjects.back());
    }
    return bench::Run(argc, argv);
}
