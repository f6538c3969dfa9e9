#pragma once

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <vector>

/// A plain statement of the display conversion, written for reading and not for speed, against
/// which the engine's is compared.
namespace zelto::test {

inline std::int64_t PlainTruncate(double v) {
    if (!(v > -9.3e18 && v < 9.2233720368547758e18))
        return INT64_MIN;
    return static_cast<std::int64_t>(v);
}
inline unsigned char PlainByte(double v) {
    return static_cast<unsigned char>(PlainTruncate(v) & 255);
}

struct PlainHistogram {
    double min = 0.0;
    double max = 0.0;
    std::vector<int> counts;
    bool hasMap = false;
    std::vector<double> map;
    bool built = false;
    double lastThreshold = 0.0;

    double Total() const {
        std::int64_t total = 0;
        for (const int c : counts)
            total += c;
        return static_cast<double>(total);
    }
    int Size() const { return static_cast<int>(counts.size()); }

    void SetEqualizationMap() {
        map.assign(counts.size(), 0.0);
        hasMap = !counts.empty();
        double cumulative = 0.0;
        for (int i = 0; i < Size(); ++i) {
            cumulative += counts[i];
            map[i] = (Size() - 1) * cumulative / Total();
        }
    }

    int Index(double position) const {
        std::int64_t i = PlainTruncate(position);
        if (i < INT32_MIN || i > INT32_MAX)
            i = INT32_MIN;
        if (i > Size() - 1)
            i = Size() - 1;
        if (i < 0)
            i = 0;
        return static_cast<int>(i);
    }

    bool Equalize(double& value) const {
        if (!hasMap)
            return value != 0.0;
        if (value == 0.0)
            return false;
        const double step = (max - min) / (Size() - 1);
        if (step == 0.0)
            return false;
        value = step * map[Index((1.0 / step) * value)] + min;
        value = (value - min) / (max - min) * 255.0;
        if (value < 0.0)
            value = 0.0;
        if (value > 255.0)
            value = 255.0;
        return true;
    }

    void SetAutoLevels(double threshold) {
        if (built && std::fabs(lastThreshold - threshold) < 1e-5)
            return;
        const double total = Total();
        const double range = max - min;
        const int n = Size();
        double low = 0.0;
        double high = 0.0;
        double seen = 0.0;
        for (int k = 0; k < n; ++k) {
            seen += counts[k];
            if (seen / total > threshold) {
                low = range * k / n + min;
                break;
            }
        }
        seen = 0.0;
        for (int j = 0; j < n; ++j) {
            seen += counts[n - 1 - j];
            if (seen / total > threshold) {
                high = (n - j - 1) * range / n + min;
                break;
            }
        }
        if (!built) {
            map.assign(counts.size(), 0.0);
            hasMap = n > 0;
        }
        for (int i = 0; hasMap && i < n; ++i) {
            map[i] = (((i - low) / (high - low)) * range + min - min) / range * 255.0;
            if (map[i] < 0.0)
                map[i] = 0.0;
            if (map[i] > 255.0)
                map[i] = 255.0;
        }
        lastThreshold = threshold;
        built = true;
    }

    bool AutoLevel(double& value) const {
        if (!hasMap)
            return false;
        const double step = (max - min) / (Size() - 1);
        if (step == 0.0)
            return false;
        value = map[Index((value - min) * (1.0 / step))];
        return true;
    }
};

/// The object of types 6, 7 and 8, with the parameters given to SetStretchData.
struct PlainObject {
    int kind = 0;
    double a[6] = {};

    unsigned char Value(double x) const {
        if (kind == 8) {
            const double scale = a[3] - a[2] > 0 ? 255.0 / (a[3] - a[2]) : 0.0;
            const double y = x * scale + (a[2] - 0.0 * scale);
            if (y < 0.0)
                return 0;
            return y > 255.0 ? 255 : PlainByte(y);
        }
        if (kind == 6) {
            const double y = (x - a[2]) * 255.0 / (a[3] - a[2]);
            if (y < 1.0)
                return 1;
            return y > 254.0 ? 254 : PlainByte(y);
        }
        double y = (x - a[0]) * (5.0 * a[5]) / (5.0 * a[1] + a[5] / 5.0) + a[4] + a[0] * 0.0;
        if (a[2] > y)
            y = a[2];
        if (y > a[3])
            y = a[3];
        return PlainByte(y);
    }
};

struct PlainDisplay {
    bool isByte = false;
    bool isSinglePixel = false;
    int type = 0;
    double min = 0.0;
    double max = 0.0;
    double mean = 0.0;
    double deviation = 0.0;
    double lower = 0.0;
    double upper = 0.0;
    double threshold = 0.01;
    std::optional<PlainHistogram> histogram;
    std::optional<PlainHistogram> custom;
    std::optional<PlainObject> object;
    std::optional<std::vector<unsigned char>> table;

    double Normalise(double x) const { return (x - min) / (max - min) * 255.0; }

    unsigned char ShowValue(double x) {
        if (type == 0 || isSinglePixel) {
            if (isByte) {
                if (x > 255.0)
                    return 255;
                return x < 0.0 ? 0 : PlainByte(x);
            }
            const double v = Normalise(x);
            if (v < 1.0)
                return 1;
            return v > 254.0 ? 254 : PlainByte(v);
        }
        if (type == 3) {
            const double d = x - mean;
            if (std::fabs(d) > 2.0 * deviation)
                x = d > 0.0 ? upper : lower;
            const double v = (x - lower) / (upper - lower) * 255.0;
            if (v < 1.0)
                return 1;
            return v > 254.0 ? 254 : PlainByte(v);
        }
        bool normalise = true;
        if ((type == 4 && histogram) || (type == 9 && custom)) {
            double value = x;
            if ((type == 4 ? *histogram : *custom).Equalize(value))
                return PlainByte(value);
            normalise = false;
        } else if (type == 5 && histogram) {
            histogram->SetAutoLevels(threshold);
            double value = x;
            if (histogram->AutoLevel(value))
                return PlainByte(value);
            normalise = false;
        } else if ((type == 8 || type == 6) && object) {
            double v = type == 6 && isByte ? x : Normalise(x);
            if (v < 1.0)
                v = 1.0;
            if (v > 254.0)
                v = 254.0;
            return object->Value(v);
        } else if (type == 7 && object) {
            return object->Value(PlainByte(Normalise(x)));
        }
        if (normalise)
            x = Normalise(x);
        if (x < 0.0)
            x = 0.0;
        if (x > 255.0)
            x = 255.0;
        const unsigned char r = PlainByte(x);
        return type == 1 && table ? (*table)[r] : r;
    }
};

} // namespace zelto::test
