#include "bench/support/Areas.h"

#include "bench/support/Scene.h"

#include <cmath>
#include <fstream>
#include <numbers>
#include <random>
#include <sstream>
#include <utility>
#include <vector>

namespace zelto::bench {

namespace {

constexpr double LEFT = 300000.0;
constexpr double TOP = 4500000.0;
constexpr double PIXEL = 10.0;
/// Of the star around the middle of a scene, in halves of the scene's width.
constexpr double LARGEST_RADIUS = 0.98;

/// A star-shaped outline.
struct Star {
    double x;
    double y;
    double radius;
    int vertices;
    unsigned seed;
};

/// A feature whose vertices lie between 0.8 and 1 times the radius from the centre.
void WriteStar(std::ostream& out, const Star& star) {
    std::minstd_rand random(star.seed);
    std::vector<std::pair<double, double>> ring;
    for (int i = 0; i < star.vertices; ++i) {
        const double angle = 2 * std::numbers::pi * i / star.vertices;
        const double r = star.radius * (0.8 + 0.2 * static_cast<double>(random() % 1000) / 1000);
        ring.emplace_back(star.x + r * std::cos(angle), star.y + r * std::sin(angle));
    }
    ring.push_back(ring.front());
    out << R"({"type":"Feature","properties":{},"geometry":{"type":"Polygon","coordinates":[[)";
    const char* separator = "";
    for (const auto& [x, y] : ring) {
        out << separator << '[' << x << ',' << y << ']';
        separator = ",";
    }
    out << "]]}}";
}

std::string WriteStars(const std::string& name, const std::vector<Star>& stars) {
    std::string path = BenchFile(name);
    std::ofstream out(path);
    out << std::fixed
        << R"({"type":"FeatureCollection","crs":{"type":"name","properties":)"
           R"({"name":"urn:ogc:def:crs:EPSG::32650"}},"features":[)";
    const char* separator = "";
    for (const Star& star : stars) {
        out << separator;
        WriteStar(out, star);
        separator = ",";
    }
    out << "]}";
    return path;
}

} // namespace

std::string StarArea(int size, int vertices) {
    std::ostringstream name;
    name << "star-" << size << '-' << vertices << ".geojson";
    const double half = size * PIXEL / 2;
    return WriteStars(name.str(), {{LEFT + half, TOP - half, half * LARGEST_RADIUS, vertices, 1}});
}

std::array<double, 4> StarBox(int size) {
    const double half = size * PIXEL / 2;
    const double radius = half * LARGEST_RADIUS;
    return {LEFT + half - radius, TOP - half + radius, LEFT + half + radius, TOP - half - radius};
}

std::string HundredAreas() {
    std::minstd_rand random(2);
    std::vector<Star> stars;
    for (unsigned i = 0; i < 100; ++i) {
        const double x = LEFT + 6000.0 + random() % 108000;
        const double y = TOP - 6000.0 - random() % 108000;
        stars.push_back({x, y, 5000.0, 50, i});
    }
    return WriteStars("hundred.geojson", stars);
}

} // namespace zelto::bench
