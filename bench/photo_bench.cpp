// Position and title of a photo beside the libraries that photo programs read them with.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "dorvutil/system/jpeg_exif.h"

#ifdef BENCH_EXIV2
#include <exiv2/exiv2.hpp>
#endif
#ifdef BENCH_EXIF
#include <libexif/exif-data.h>
#endif

namespace {

constexpr std::size_t kPhotoBytes = 5'000'000;

struct Findings {
    double latitude = 0.0;
    double longitude = 0.0;
    char latitudeRef = 0;
    char longitudeRef = 0;
    std::string title;
};

// A bundled photo whose image data was made longer, removed at the end of the process.
class LargePhoto {
public:
    LargePhoto() {
        std::ifstream in(DORVUTIL_DATA_DIR "/photos/mm-ne-exiftool.jpg", std::ios::binary);
        std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        const std::size_t end = bytes.rfind("\xFF\xD9");
        if (end != std::string::npos && bytes.size() < kPhotoBytes) {
            bytes.insert(end, kPhotoBytes - bytes.size(), '\x5A');
        }
        std::ofstream(m_path, std::ios::binary) << bytes;
    }
    ~LargePhoto() { std::remove(m_path.c_str()); }
    LargePhoto(const LargePhoto&) = delete;
    LargePhoto& operator=(const LargePhoto&) = delete;
    const std::string& Path() const { return m_path; }

private:
    static std::string Folder() {
        const char* const folder = std::getenv("TMPDIR");
        return folder ? folder : "/tmp";
    }
    const std::string m_path = Folder() + "/dorvutil_bench_" + std::to_string(getpid()) + ".jpg";
};

template <class Read>
void ReadPhoto(benchmark::State& state, Read read) {
    static const LargePhoto photo;
    Findings found;
    for (auto _ : state) {
        found = Findings();
        read(photo.Path(), found);
        benchmark::DoNotOptimize(found);
    }
    const bool right = found.latitude == 51.5 && found.longitude == 0.125 && found.latitudeRef == 'N' &&
                       found.longitudeRef == 'E' && found.title == "Greenwich";
    if (!right) state.SkipWithError("not what the photo says");
}

void ReadWithDorvutil(const std::string& path, Findings& found) {
    dorvutil::JpegExifInfo info;
    dorvutil::CJpegExifParser parser;
    parser.ParseJpegExif(path.c_str(), info);
    found = {info.m_latitude, info.m_longitude, info.m_latitudeRef, info.m_longitudeRef, info.m_title.c_str()};
}

void PhotoDorvutil(benchmark::State& state) { ReadPhoto(state, ReadWithDorvutil); }
BENCHMARK(PhotoDorvutil)->Name("position and title of a 5 MB photo|dorvutil");

#ifdef BENCH_EXIV2
double Degrees(const Exiv2::Exifdatum& datum) {
    const auto part = [&](std::int32_t i) {
        const Exiv2::Rational rational = datum.toRational(i);
        return rational.second == 0 ? 0.0 : static_cast<double>(rational.first) / rational.second;
    };
    return part(0) + part(1) / 60.0 + part(2) / 3600.0;
}

void ReadWithExiv2(const std::string& path, Findings& found) {
    const auto image = Exiv2::ImageFactory::open(path);
    image->readMetadata();
    Exiv2::ExifData& data = image->exifData();
    found.latitude = Degrees(data["Exif.GPSInfo.GPSLatitude"]);
    found.longitude = Degrees(data["Exif.GPSInfo.GPSLongitude"]);
    found.latitudeRef = data["Exif.GPSInfo.GPSLatitudeRef"].toString()[0];
    found.longitudeRef = data["Exif.GPSInfo.GPSLongitudeRef"].toString()[0];
    found.title = data["Exif.Image.XPTitle"].print();
}

void PhotoExiv2(benchmark::State& state) { ReadPhoto(state, ReadWithExiv2); }
BENCHMARK(PhotoExiv2)->Name("position and title of a 5 MB photo|exiv2");
#endif

#ifdef BENCH_EXIF
double Degrees(const ExifEntry& entry) {
    const ExifByteOrder order = exif_data_get_byte_order(entry.parent->parent);
    const auto part = [&](int i) {
        const ExifRational rational = exif_get_rational(entry.data + 8 * i, order);
        return rational.denominator == 0 ? 0.0 : static_cast<double>(rational.numerator) / rational.denominator;
    };
    return part(0) + part(1) / 60.0 + part(2) / 3600.0;
}

void ReadWithLibexif(const std::string& path, Findings& found) {
    ExifData* const data = exif_data_new_from_file(path.c_str());
    if (!data) return;
    const auto gps = [&](int tag) {
        return exif_content_get_entry(data->ifd[EXIF_IFD_GPS], static_cast<ExifTag>(tag));
    };
    const ExifEntry* const latitude = gps(EXIF_TAG_GPS_LATITUDE);
    const ExifEntry* const longitude = gps(EXIF_TAG_GPS_LONGITUDE);
    const ExifEntry* const latitudeRef = gps(EXIF_TAG_GPS_LATITUDE_REF);
    const ExifEntry* const longitudeRef = gps(EXIF_TAG_GPS_LONGITUDE_REF);
    ExifEntry* const title = exif_content_get_entry(data->ifd[EXIF_IFD_0], EXIF_TAG_XP_TITLE);
    if (latitude && longitude && latitudeRef && longitudeRef && title) {
        char text[256];
        found = {Degrees(*latitude), Degrees(*longitude), static_cast<char>(latitudeRef->data[0]),
                 static_cast<char>(longitudeRef->data[0]), exif_entry_get_value(title, text, sizeof(text))};
    }
    exif_data_unref(data);
}

void PhotoLibexif(benchmark::State& state) { ReadPhoto(state, ReadWithLibexif); }
BENCHMARK(PhotoLibexif)->Name("position and title of a 5 MB photo|libexif");
#endif

}  // namespace
