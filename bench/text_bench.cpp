// Text beside its peers: conversions, short strings, comparison of names.
#include <benchmark/benchmark.h>
#include <iconv.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include "dorvutil/text.h"

#ifdef BENCH_ICU
#include <unicode/coll.h>
#include <unicode/ustring.h>
#endif
#ifdef BENCH_QT
#include <QString>
#endif

namespace {

using dorvutil::ORVustring;

// 64 KB of running text in one script: ordinary words with blanks and full stops between them.
std::string Repeat(const std::string& piece) {
    std::string text;
    while (text.size() + piece.size() <= 65536) text += piece;
    return text;
}

const std::string& Sample(int kind) {
    static const std::string samples[] = {
        Repeat("The river road leads past the old mill to the market. "),
        Repeat("Süße Äpfel für Zoë: à l'été, où le garçon a reçu neuf pêches mûres. "),
        Repeat("Дорога вдоль реки ведёт к старой мельнице. Ο δρόμος δίπλα στο ποτάμι. "),
    };
    return samples[kind];
}
const char* const kKinds[] = {"ASCII", "accented Latin", "Cyrillic and Greek"};

std::u16string Wide(const std::string& text) {
    std::u16string wide(text.size() + 1, u'\0');
    dorvutil::ORVConvertUTF8toUTF16(text.data(), static_cast<std::uint32_t>(text.size()), wide.data(),
                                    static_cast<std::uint32_t>(wide.size()));
    wide.resize(wide.find(u'\0'));
    return wide;
}

void Decode(benchmark::State& state, int kind) {
    const std::string& text = Sample(kind);
    std::u16string out(text.size() + 1, u'\0');
    for (auto _ : state) {
        dorvutil::ORVConvertUTF8toUTF16(text.data(), static_cast<std::uint32_t>(text.size()), out.data(),
                                        static_cast<std::uint32_t>(out.size()));
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}

void Encode(benchmark::State& state, int kind) {
    const std::u16string wide = Wide(Sample(kind));
    std::string out(wide.size() * 3 + 1, '\0');
    for (auto _ : state) {
        dorvutil::ORVConvertUTF16toUTF8(wide.data(), static_cast<std::uint32_t>(wide.size()), out.data(),
                                        static_cast<std::uint32_t>(out.size()));
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * Sample(kind).size()));
}

void IconvConvert(benchmark::State& state, int kind, bool decode) {
    const std::string& text = Sample(kind);
    std::u16string wide = Wide(text);
    std::string narrow = text;
    const iconv_t converter = decode ? iconv_open("UTF-16LE", "UTF-8") : iconv_open("UTF-8", "UTF-16LE");
    std::string out(text.size() * 3 + 16, '\0');
    for (auto _ : state) {
        char* from = decode ? narrow.data() : reinterpret_cast<char*>(wide.data());
        std::size_t left = decode ? narrow.size() : wide.size() * 2;
        char* to = out.data();
        std::size_t room = out.size();
        benchmark::DoNotOptimize(iconv(converter, &from, &left, &to, &room));
        benchmark::ClobberMemory();
    }
    iconv_close(converter);
}

#ifdef BENCH_ICU
void IcuConvert(benchmark::State& state, int kind, bool decode) {
    const std::string& text = Sample(kind);
    const std::u16string wide = Wide(text);
    std::u16string wideOut(text.size() + 1, u'\0');
    std::string narrowOut(text.size() * 3 + 1, '\0');
    for (auto _ : state) {
        UErrorCode error = U_ZERO_ERROR;
        std::int32_t length = 0;
        if (decode) {
            u_strFromUTF8(wideOut.data(), static_cast<std::int32_t>(wideOut.size()), &length, text.data(),
                          static_cast<std::int32_t>(text.size()), &error);
        } else {
            u_strToUTF8(narrowOut.data(), static_cast<std::int32_t>(narrowOut.size()), &length, wide.data(),
                        static_cast<std::int32_t>(wide.size()), &error);
        }
        benchmark::DoNotOptimize(length);
        benchmark::ClobberMemory();
    }
}
#endif

#ifdef BENCH_QT
void QtConvert(benchmark::State& state, int kind, bool decode) {
    const std::string& text = Sample(kind);
    const QString wide = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    for (auto _ : state) {
        if (decode) {
            benchmark::DoNotOptimize(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
        } else {
            benchmark::DoNotOptimize(wide.toUtf8());
        }
    }
}
#endif

void Register(const std::string& work, const std::string& who, void (*run)(benchmark::State&, int), int kind) {
    benchmark::RegisterBenchmark((work + "|" + who).c_str(), run, kind);
}

void RegisterConversions() {
    for (int kind = 0; kind < 3; ++kind) {
        for (const bool decode : {true, false}) {
            const std::string work =
                std::string(decode ? "UTF-8 to UTF-16, 64 KB " : "UTF-16 to UTF-8, 64 KB ") + kKinds[kind];
            Register(work, "dorvutil", decode ? Decode : Encode, kind);
            benchmark::RegisterBenchmark((work + "|iconv").c_str(), IconvConvert, kind, decode);
#ifdef BENCH_ICU
            benchmark::RegisterBenchmark((work + "|ICU").c_str(), IcuConvert, kind, decode);
#endif
#ifdef BENCH_QT
            benchmark::RegisterBenchmark((work + "|QString").c_str(), QtConvert, kind, decode);
#endif
        }
    }
}

// Names of the bundled places.
const std::vector<std::string>& Names() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> list;
        std::ifstream file(DORVUTIL_DATA_DIR "/places.tsv");
        std::string line;
        std::getline(file, line);
        while (std::getline(file, line) && list.size() < 20000) list.push_back(line.substr(0, line.find('\t')));
        return list;
    }();
    return names;
}

void CompareNames(benchmark::State& state) {
    const auto& names = Names();
    for (auto _ : state) {
        int sum = 0;
        for (std::size_t i = 0; i < 10000; ++i) {
            const std::string &a = names[i], &b = names[i + 1];
            sum += dorvutil::StringCompare2(a.data(), static_cast<std::int32_t>(a.size()), b.data(),
                                            static_cast<std::int32_t>(b.size()));
        }
        benchmark::DoNotOptimize(sum);
    }
}

#ifdef BENCH_ICU
void CompareNamesIcu(benchmark::State& state) {
    const auto& names = Names();
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(icu::Locale::getRoot(), error));
    collator->setStrength(icu::Collator::PRIMARY);
    for (auto _ : state) {
        int sum = 0;
        for (std::size_t i = 0; i < 10000; ++i) {
            const std::string &a = names[i], &b = names[i + 1];
            sum += collator->compareUTF8({a.data(), static_cast<std::int32_t>(a.size())},
                                         {b.data(), static_cast<std::int32_t>(b.size())}, error);
        }
        benchmark::DoNotOptimize(sum);
    }
}
#endif

template <class S>
void CopyShort(benchmark::State& state) {
    const S source("Rue de la Paix 12");
    for (auto _ : state) {
        S copy(source);
        benchmark::DoNotOptimize(copy);
    }
}

template <class S>
void AppendShort(benchmark::State& state) {
    for (auto _ : state) {
        S text("Rue");
        text += " de la";
        text += " Paix";
        text += ' ';
        text += "12";
        benchmark::DoNotOptimize(text);
    }
}

void CompareShort(benchmark::State& state) {
    const ORVustring a("Rue de la Paix 12"), b("Rue de la Paix 14");
    for (auto _ : state) benchmark::DoNotOptimize(a < b);
}
void CompareShortStd(benchmark::State& state) {
    const std::string a("Rue de la Paix 12"), b("Rue de la Paix 14");
    for (auto _ : state) benchmark::DoNotOptimize(a < b);
}

void FindShort(benchmark::State& state) {
    const ORVustring text("Rue de la Paix 12, 75002 Paris, France");
    for (auto _ : state) benchmark::DoNotOptimize(text.find("Paris", 0, false));
}
void FindShortStd(benchmark::State& state) {
    const std::string text("Rue de la Paix 12, 75002 Paris, France");
    for (auto _ : state) benchmark::DoNotOptimize(text.find("Paris", 0));
}

const int g_registered = [] {
    RegisterConversions();
    benchmark::RegisterBenchmark("short string: copy|dorvutil", CopyShort<ORVustring>);
    benchmark::RegisterBenchmark("short string: copy|std::string", CopyShort<std::string>);
    benchmark::RegisterBenchmark("short string: four appends|dorvutil", AppendShort<ORVustring>);
    benchmark::RegisterBenchmark("short string: four appends|std::string", AppendShort<std::string>);
    benchmark::RegisterBenchmark("short string: compare|dorvutil", CompareShort);
    benchmark::RegisterBenchmark("short string: compare|std::string", CompareShortStd);
    benchmark::RegisterBenchmark("short string: find|dorvutil", FindShort);
    benchmark::RegisterBenchmark("short string: find|std::string", FindShortStd);
    benchmark::RegisterBenchmark("StringCompare2, 10,000 pairs of names|dorvutil", CompareNames);
#ifdef BENCH_ICU
    benchmark::RegisterBenchmark("StringCompare2, 10,000 pairs of names|ICU collator", CompareNamesIcu);
#endif
    return 0;
}();

}  // namespace
