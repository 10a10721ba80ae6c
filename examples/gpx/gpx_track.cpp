// A GPX file through classes built from its schema at run time: read a track,
// print its length and duration, add a waypoint and write the file back.
//
// usage: qmxml_gpx_track [GPX [SCHEMA [OUT]]]
//   GPX     the track (default: examples/gpx/data/lake_walk.gpx)
//   SCHEMA  the GPX 1.1 schema, the full one or the example's subset
//           (default: examples/gpx/gpx11_subset.xsd)
//   OUT     where the copy with the new waypoint goes (default: lake_walk_out.gpx)
//
// The logic sits in plain functions that reach members by name (GetValue,
// SetValue), the way generated classes name their accessors, so that moving
// to generated classes changes the access, not the logic.
#include <qmxml/qmxml.h>
#include <qmxml/schema/dynamic_classes.h>
#include <qmxml/schema/schema_set.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <memory>
#include <string>
#include <vector>

using namespace QmXmlLib10;
using namespace QmXmlLib10::Schema;

namespace {

using ObjectCollection = CXmlTypedClassCollection<CDynamicObject>;

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

// The items of a repeating class member (empty when the member is unset).
std::vector<CSmartPtr<CDynamicObject>> Items(const CDynamicObject& owner, const char* member) {
    std::vector<CSmartPtr<CDynamicObject>> items;
    const QmVariant value = owner.GetValue(member);
    if (!value.IsValid()) return items;
    const CSmartPtr<CXmlCollectionBase> collection = value.GetXmlCollection();
    const auto* objects = dynamic_cast<const ObjectCollection*>(collection.Get());
    if (objects == nullptr) throw CQmException("The member [" + std::string(member) + "] holds no objects");
    for (int i = 0; i < objects->GetCount(); ++i) items.push_back(objects->GetItem(i));
    return items;
}

TrackPoint PointOf(const CDynamicObject& point) {
    TrackPoint p;
    p.lat = point.GetValue("lat").GetDecimal().ToDouble();
    p.lon = point.GetValue("lon").GetDecimal().ToDouble();
    const QmVariant time = point.GetValue("time");
    if (time.IsValid() && !time.IsNil()) {
        p.hasTime = true;
        p.time = time.GetDateTime().GetTime();
    }
    return p;
}

Segments ReadSegments(const CDynamicObject& gpx) {
    Segments segments;
    for (const auto& track : Items(gpx, "trk"))
        for (const auto& segment : Items(*track, "trkseg")) {
            segments.emplace_back();
            for (const auto& point : Items(*segment, "trkpt")) segments.back().push_back(PointOf(*point));
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

// A new waypoint of the class the gpx element's "wpt" member takes, set
// through the same checks reading applies (a latitude out of range throws).
void AddWaypoint(const CDynamicClassSet& classes, CDynamicObject& gpx, const std::string& lat, const std::string& lon,
                 const std::string& name) {
    const int member = gpx.FindProperty("wpt");
    if (member < 0) throw CQmException("The gpx class has no member [wpt]");
    const CClassDescription& waypointClass =
        *classes.GetClasses()[gpx.GetDescription().properties[member].classIndex];
    CSmartPtr<CDynamicObject> waypoint = classes.CreateObject(waypointClass);
    QmVariant value;
    value.SetDecimal(CDecimal(lat.c_str()));
    waypoint->SetValue("lat", value);
    value.SetDecimal(CDecimal(lon.c_str()));
    waypoint->SetValue("lon", value);
    value.SetString(name);
    waypoint->SetValue("name", value);

    QmVariant collection = gpx.GetValue("wpt");
    auto* waypoints = dynamic_cast<ObjectCollection*>(collection.GetXmlCollection().Get());
    if (waypoints == nullptr) throw CQmException("The member [wpt] holds no objects");
    waypoints->Add(waypoint.Get());
}

std::string TrackName(const CDynamicObject& gpx) {
    for (const auto& track : Items(gpx, "trk")) {
        const QmVariant name = track->GetValue("name");
        if (name.IsValid() && !name.IsNil()) return name.GetString();
    }
    return "(unnamed)";
}

}  // namespace

int main(int argc, char** argv) {
    const std::string gpxPath = argc > 1 ? argv[1] : QMXML_GPX_EXAMPLE_DIR "/data/lake_walk.gpx";
    const std::string schemaPath = argc > 2 ? argv[2] : QMXML_GPX_EXAMPLE_DIR "/gpx11_subset.xsd";
    const std::string outPath = argc > 3 ? argv[3] : "lake_walk_out.gpx";
    try {
        const auto classes = CDynamicClassSet::Create(CSchemaSet::LoadFile(schemaPath));
        CSmartPtr<CDynamicObject> gpx = classes->ReadFile(gpxPath);

        const Segments segments = ReadSegments(*gpx);
        std::size_t points = 0;
        for (const auto& segment : segments) points += segment.size();
        const std::int64_t duration = DurationSeconds(segments);
        std::printf("track:     %s\n", TrackName(*gpx).c_str());
        std::printf("points:    %zu in %zu segment(s)\n", points, segments.size());
        std::printf("length:    %.3f km\n", LengthKm(segments));
        std::printf("duration:  %s\n", duration < 0 ? "(no times)" : Clock(duration).c_str());

        AddWaypoint(*classes, *gpx, "47.3500", "8.5600", "Boat landing");
        gpx->ToXmlFile(outPath.c_str());

        // What was written reads back through the same classes.
        CSmartPtr<CDynamicObject> again = classes->ReadFile(outPath);
        const auto waypoints = Items(*again, "wpt");
        std::printf("written:   %s, %zu waypoint(s), last [%s]\n", outPath.c_str(), waypoints.size(),
                    waypoints.empty() ? "" : waypoints.back()->GetValue("name").GetString().c_str());
        return 0;
    } catch (const CQmException& e) {
        std::fprintf(stderr, "%s\n", e.GetFullMessage().c_str());
        return 1;
    }
}
