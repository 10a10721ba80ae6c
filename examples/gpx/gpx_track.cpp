// A GPX file through classes the schema compiler writes at build time from
// the example's GPX 1.1 subset (gpx11_subset.xsd): read a track, print its
// length and duration, add a waypoint and write the file back.
//
// usage: qmxml_gpx_track [GPX [OUT]]
//   GPX     the track (default: examples/gpx/data/lake_walk.gpx)
//   OUT     where the copy with the new waypoint goes (default: lake_walk_out.gpx)
#include <qmxml/qmxml.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "gpx11_subset.h"  // generated; the GPX namespace is mapped to the C++ namespace gpx

using namespace QmXmlLib10;

namespace {

struct TrackPoint {
    double lat = 0;
    double lon = 0;
    bool hasTime = false;
    std::int64_t time = 0;  // seconds since 1970, UTC
};

// One list of points per track segment, of every track of the file: a new
// segment means the recording paused, so the distance between two segments
// is not walked.
using Segments = std::vector<std::vector<TrackPoint>>;

TrackPoint PointOf(const gpx::CwptType& point) {
    TrackPoint p;
    p.lat = point.GetLat().ToDouble();
    p.lon = point.GetLon().ToDouble();
    if (point.IsValidTime()) {
        p.hasTime = true;
        p.time = point.GetTime().GetTime();
    }
    return p;
}

Segments ReadSegments(const gpx::CgpxType& file) {
    Segments segments;
    for (const gpx::CtrkType* track : *file.GetTrk())
        for (const gpx::CtrksegType* segment : *track->GetTrkseg()) {
            segments.emplace_back();
            for (const gpx::CwptType* point : *segment->GetTrkpt()) segments.back().push_back(PointOf(*point));
        }
    return segments;
}

// The great-circle distance on a sphere of the Earth's mean radius.
double HaversineKm(const TrackPoint& a, const TrackPoint& b) {
    constexpr double kEarthRadiusKm = 6371.0;
    constexpr double kRadians = 3.14159265358979323846 / 180.0;
    const double dLat = (b.lat - a.lat) * kRadians;
    const double dLon = (b.lon - a.lon) * kRadians;
    const double h = std::sin(dLat / 2) * std::sin(dLat / 2) +
                     std::cos(a.lat * kRadians) * std::cos(b.lat * kRadians) * std::sin(dLon / 2) * std::sin(dLon / 2);
    return 2 * kEarthRadiusKm * std::asin(std::min(1.0, std::sqrt(h)));
}

double LengthKm(const Segments& segments) {
    double km = 0;
    for (const auto& segment : segments)
        for (std::size_t i = 1; i < segment.size(); ++i) km += HaversineKm(segment[i - 1], segment[i]);
    return km;
}

// From the first timed point to the last; -1 without two timed points.
std::int64_t DurationSeconds(const Segments& segments) {
    bool any = false;
    std::int64_t first = 0, last = 0;
    int timed = 0;
    for (const auto& segment : segments)
        for (const TrackPoint& p : segment) {
            if (!p.hasTime) continue;
            if (!any) first = p.time;
            any = true;
            last = p.time;
            ++timed;
        }
    return timed >= 2 ? last - first : -1;
}

std::string Clock(std::int64_t seconds) {
    char text[32];
    std::snprintf(text, sizeof text, "%02lld:%02lld:%02lld", static_cast<long long>(seconds / 3600),
                  static_cast<long long>(seconds / 60 % 60), static_cast<long long>(seconds % 60));
    return text;
}

// The setters apply the checks reading applies: a latitude out of range throws.
void AddWaypoint(gpx::CgpxType& file, const std::string& lat, const std::string& lon, const std::string& name) {
    CSmartPtr<gpx::CwptType> waypoint(new gpx::CwptType);
    waypoint->SetLat(CDecimal(lat.c_str()));
    waypoint->SetLon(CDecimal(lon.c_str()));
    waypoint->SetName(name);
    file.GetWpt()->Add(waypoint.Get());
}

std::string TrackName(const gpx::CgpxType& file) {
    for (const gpx::CtrkType* track : *file.GetTrk())
        if (track->IsValidName()) return track->GetName();
    return "(unnamed)";
}

// The set's ReadFile picks the class from the root element; a document of
// another root than gpx is refused here.
CSmartPtr<gpx::CgpxType> ReadGpx(const std::string& path) {
    CSmartPtr<CXmlGeneratedClass> root = gpx::ReadFile(path);
    auto* file = dynamic_cast<gpx::CgpxType*>(root.Get());
    if (file == nullptr) throw CQmException("The document [" + path + "] is not a GPX file");
    return CSmartPtr<gpx::CgpxType>(file);
}

int Run(const std::string& gpxPath, const std::string& outPath) {
    CSmartPtr<gpx::CgpxType> file = ReadGpx(gpxPath);

    const Segments segments = ReadSegments(*file);
    std::size_t points = 0;
    for (const auto& segment : segments) points += segment.size();
    const std::int64_t duration = DurationSeconds(segments);
    std::printf("track:     %s\n", TrackName(*file).c_str());
    std::printf("points:    %zu in %zu segment(s)\n", points, segments.size());
    std::printf("length:    %.3f km\n", LengthKm(segments));
    std::printf("duration:  %s\n", duration < 0 ? "(no times)" : Clock(duration).c_str());

    AddWaypoint(*file, "47.3500", "8.5600", "Boat landing");
    file->ToXmlFile(outPath.c_str());

    // What was written reads back through the same classes.
    CSmartPtr<gpx::CgpxType> again = ReadGpx(outPath);
    const auto* waypoints = again->GetWpt();
    const int count = waypoints->GetCount();
    std::printf("written:   %s, %d waypoint(s), last [%s]\n", outPath.c_str(), count,
                count == 0 || !waypoints->GetItem(count - 1)->IsValidName()
                    ? ""
                    : waypoints->GetItem(count - 1)->GetName().c_str());
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc > 3) {
        std::fprintf(stderr, "usage: qmxml_gpx_track [GPX [OUT]]\n");
        return 2;
    }
    const std::string gpxPath = argc > 1 ? argv[1] : QMXML_GPX_EXAMPLE_DIR "/data/lake_walk.gpx";
    const std::string outPath = argc > 2 ? argv[2] : "lake_walk_out.gpx";
    int rc = 1;
    try {
        rc = Run(gpxPath, outPath);
    } catch (const CQmException& e) {
        std::fprintf(stderr, "%s\n", e.GetFullMessage().c_str());
    }
    gpx::CleanMetaData();
    return rc;
}
