#include "hosts/library/light_finder.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include "hosts/library/picture_survey.h"

namespace radiashafts::hosts {
namespace {

// Found by trial on photographs (tools/judge_auto). Lengths are in diagonals of the picture.
constexpr double lightBlur = 0.014;       // removes glints
constexpr double surroundingsBlur = 0.1;  // what a light is brighter than
constexpr double glowRadius = 0.25;       // of the part of a picture that a glow fills
constexpr double slightSlope = 2;         // of brightness, in a diagonal: glows are steeper
constexpr double glowOfLamps = 0.6;       // a lamp with none is as good as other things with this
constexpr double leastLight = 0.5;        // contrast and glow together
constexpr double centerRadius = 0.1;      // of the part whose centre is taken
constexpr double centerBrightness = 0.6;  // that part's, where the light's is 1 and the median 0
constexpr double shiningShare = 0.1;      // of the picture, above the threshold

// Calls use(x, y) for the cells of a map that are at most so many columns and rows away.
template <class Use>
void forCellsAround(int x, int y, int reach, const Map& map, Use use) {
  for (int row = std::max(y - reach, 0); row <= std::min(y + reach, map.height - 1); ++row) {
    for (int column = std::max(x - reach, 0); column <= std::min(x + reach, map.width - 1);
         ++column) {
      use(column, row);
    }
  }
}

// Where the weight is 0, the median does not count.
float medianOf(const Map& map, const Map& weight) {
  std::vector<float> values;
  for (std::size_t i = 0; i < map.values.size(); ++i) {
    if (weight.values[i] > 0) values.push_back(map.values[i]);
  }
  if (values.empty()) return 0;
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// Which way a map gets brighter: vectors up to 1 long, and short where it hardly does.
struct Slopes {
  Map x, y;

  explicit Slopes(const Map& brightness) : x(brightness.width, brightness.height), y(x) {
    const auto slight = static_cast<float>(slightSlope / brightness.diagonal());
    for (int row = 0; row < x.height; ++row) {
      for (int column = 0; column < x.width; ++column) {
        const int left = std::max(column - 1, 0), right = std::min(column + 1, x.width - 1);
        const int above = std::max(row - 1, 0), below = std::min(row + 1, x.height - 1);
        const float dx = (brightness.at(right, row) - brightness.at(left, row)) / 2;
        const float dy = (brightness.at(column, below) - brightness.at(column, above)) / 2;
        const float length = std::hypot(dx, dy) + slight;
        x.values[x.index(column, row)] = dx / length;
        y.values[y.index(column, row)] = dy / length;
      }
    }
  }
};

struct Place {
  int x, y;  // a cell
  double glow;
};

// Looks for the light in a small picture.
class Search {
 public:
  explicit Search(const Survey& picture)
      : picture_(picture),
        brightness_(softBrightness(picture, lightBlur)),
        surroundings_(softBrightness(picture, surroundingsBlur)),
        slopes_(brightness_),
        median_(medianOf(brightness_, picture.weight)) {}

  // The peak of prominence with the most of it, weighted by its glow.
  std::optional<Place> brightestPlace() const;
  // A white thing has contrast, but little glow. In the dark, contrast is enough.
  bool isLight(const Place& place) const;

  struct Center {
    double x = 0, y = 0;   // cells
    double lightness = 0;  // mean
  };
  // The centre of the light around a place: a mean, taken again around itself.
  Center centerAround(const Place& place) const;

 private:
  float contrast(int x, int y) const { return brightness_.at(x, y) - median_; }
  // A light is brighter than its surroundings and than most of the picture.
  float prominence(int x, int y) const;
  bool isPeak(int x, int y) const;
  double glow(int x, int y) const;

  const Survey& picture_;
  Map brightness_, surroundings_;
  Slopes slopes_;
  float median_;
};

float Search::prominence(int x, int y) const {
  if (picture_.weight.at(x, y) == 0) return 0;
  return std::max(brightness_.at(x, y) - surroundings_.at(x, y), 0.0F) *
         std::max(contrast(x, y), 0.0F);
}

bool Search::isPeak(int x, int y) const {
  const float here = prominence(x, y);
  bool highest = here > 0;
  forCellsAround(x, y, 1, brightness_, [&](int column, int row) {
    highest = highest && prominence(column, row) <= here;
  });
  return highest;
}

// How steadily it gets brighter towards a cell from all sides: 1 in a perfect glow, about 0 among
// edges and textures, which have slopes to all sides, and in flat areas.
double Search::glow(int x, int y) const {
  const double radius = glowRadius * brightness_.diagonal();
  double towards = 0, weight = 0;
  forCellsAround(x, y, static_cast<int>(radius), brightness_, [&](int column, int row) {
    const double dx = x - column, dy = y - row;
    const double distance = std::hypot(dx, dy);
    if (distance == 0 || distance > radius) return;
    const double w = picture_.weight.at(column, row);
    towards += w * (slopes_.x.at(column, row) * dx + slopes_.y.at(column, row) * dy) / distance;
    weight += w;
  });
  return weight > 0 ? towards / weight : 0;
}

std::optional<Place> Search::brightestPlace() const {
  std::optional<Place> best;
  double bestScore = 0;
  for (int y = 0; y < brightness_.height; ++y) {
    for (int x = 0; x < brightness_.width; ++x) {
      if (!isPeak(x, y)) continue;
      const double glowHere = glow(x, y);
      const double score = prominence(x, y) * (glowOfLamps + glowHere);
      if (score <= bestScore) continue;
      bestScore = score;
      best = Place{x, y, glowHere};
    }
  }
  return best;
}

bool Search::isLight(const Place& place) const {
  return std::min(contrast(place.x, place.y), 1.0F) + place.glow >= leastLight;
}

Search::Center Search::centerAround(const Place& place) const {
  const double leastContrast = centerBrightness * contrast(place.x, place.y);
  const double radius = centerRadius * brightness_.diagonal();
  Center center{static_cast<double>(place.x), static_cast<double>(place.y)};
  for (int pass = 0; pass < 5; ++pass) {
    Center sum;
    double weight = 0;
    const auto column = static_cast<int>(center.x), row = static_cast<int>(center.y);
    forCellsAround(column, row, static_cast<int>(radius) + 1, brightness_, [&](int x, int y) {
      const double above = contrast(x, y) - leastContrast;
      if (above <= 0 || std::hypot(x - center.x, y - center.y) > radius) return;
      const double share = above * above;
      sum.x += share * picture_.weight.at(x, y) * x;
      sum.y += share * picture_.weight.at(x, y) * y;
      sum.lightness += share * picture_.lightness.at(x, y);
      weight += share * picture_.weight.at(x, y);
    });
    if (weight == 0) break;
    center = {sum.x / weight, sum.y / weight, sum.lightness / weight};
  }
  return center;
}

// The lightness of the brightest part of the picture, but less than that of the light itself.
int lowestShining(const Survey& picture, double lightness) {
  const auto& histogram = picture.histogram;
  const double whole = std::accumulate(histogram.begin(), histogram.end(), 0.0);
  int low = 255;
  for (double above = histogram[255]; low > 0 && above < shiningShare * whole;) {
    above += histogram[static_cast<std::size_t>(--low)];
  }
  return std::min(low, static_cast<int>(0.9 * lightness * 255));
}

}  // namespace

std::optional<Light> findLight(const standin::Picture& picture, const standin::Mask* mask) {
  const Survey small = survey(picture, mask);
  const Search search(small);
  const std::optional<Place> place = search.brightestPlace();
  if (!place || !search.isLight(*place)) return std::nullopt;
  const Search::Center center = search.centerAround(*place);
  const auto position = [&small](double cells, int pixels) {
    return std::min((cells + 0.5) * small.cellSide / pixels, 1.0);
  };
  return Light{position(center.x, picture.width), position(center.y, picture.height),
               lowestShining(small, center.lightness)};
}

}  // namespace radiashafts::hosts
