#include "hosts/library/light_finder.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include "hosts/library/picture_survey.h"

namespace radiashafts::hosts {
namespace {

// Lengths are in diagonals of the picture.
constexpr double lightBlur = 0.014;        // removes glints
constexpr double surroundingsBlur = 0.1;   // what a light is brighter than
constexpr float brightestCell = 4;         // of unclipped light
constexpr float whiteCell = 0.95F;         // from here on a cell is white
constexpr double slightSlope = 2;          // of brightness, in a diagonal: glows are steeper
constexpr double steepestSlope = 10;       // that counts
constexpr int candidateStep = 4;           // cells
constexpr float brightestShown = 1.2F;     // brighter is no better
constexpr float roughSlope = 0.03F;        // of brightness, from a cell to the next
constexpr double leastLampContrast = 0.5;  // where no glow is needed
constexpr double leastGlow = 0.1;
constexpr double calmShare = 0.1;         // of a picture, rough at most, where a glow shows
constexpr double leastLight = 2.3;        // sum of the measures that tell a light from other things
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

// The brightness of unclipped suns would hide everything else.
Survey limited(Survey picture) {
  for (std::size_t i = 0; i < picture.brightness.values.size(); ++i) {
    float& brightness = picture.brightness.values[i];
    brightness = std::min(brightness, brightestCell * picture.weight.values[i]);
  }
  return picture;
}

// Where the weight is 0, values do not count.
std::vector<float> sortedValues(const Map& map, const Map& weight) {
  std::vector<float> values;
  for (std::size_t i = 0; i < map.values.size(); ++i) {
    if (weight.values[i] > 0) values.push_back(map.values[i]);
  }
  std::sort(values.begin(), values.end());
  return values;
}

// How a map changes from a cell to the next.
struct Gradient {
  float x, y;

  Gradient(const Map& map, int column, int row) {
    const int left = std::max(column - 1, 0), right = std::min(column + 1, map.width - 1);
    const int above = std::max(row - 1, 0), below = std::min(row + 1, map.height - 1);
    x = (map.at(right, row) - map.at(left, row)) / 2;
    y = (map.at(column, below) - map.at(column, above)) / 2;
  }
  float length() const { return std::hypot(x, y); }
};

// The share of the cells that count for which holds(x, y) is true.
template <class Condition>
double shareOf(const Survey& picture, Condition holds) {
  double share = 0, whole = 0;
  for (int y = 0; y < picture.weight.height; ++y) {
    for (int x = 0; x < picture.weight.width; ++x) {
      if (picture.weight.at(x, y) == 0) continue;
      share += holds(x, y) ? 1 : 0;
      whole += 1;
    }
  }
  return whole > 0 ? share / whole : 0;
}

double whiteShare(const Survey& picture) {
  return shareOf(picture, [&picture](int x, int y) {
    return picture.brightness.at(x, y) >= whiteCell * picture.weight.at(x, y);
  });
}

double roughShare(const Survey& picture) {
  return shareOf(picture, [&picture](int x, int y) {
    return Gradient(picture.brightness, x, y).length() > roughSlope;
  });
}

// Which way a map gets brighter: vectors up to 1 long, and short where it hardly does.
struct Slopes {
  Map x, y;

  explicit Slopes(const Map& brightness) : x(brightness.width, brightness.height), y(x) {
    const auto slight = static_cast<float>(slightSlope / brightness.diagonal());
    for (int row = 0; row < x.height; ++row) {
      for (int column = 0; column < x.width; ++column) {
        const Gradient gradient(brightness, column, row);
        const float length = gradient.length() + slight;
        x.values[x.index(column, row)] = gradient.x / length;
        y.values[y.index(column, row)] = gradient.y / length;
      }
    }
  }
};

struct Place {
  int x, y;  // a cell
};

// Looks for the light in a small picture.
class Search {
 public:
  explicit Search(const Survey& picture);

  // None where everything is transparent or outside the mask.
  std::optional<Place> likeliestPlace() const;
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
  float prominence(const Place& place) const;
  // How well a place suits a light, by measures with weights.
  double likelihood(const Place& place) const;
  // The share of the picture that is at least as bright.
  double brighterShare(const Place& place) const;
  double glow(const Place& place, double radius) const;
  // How much brighter the brightest cell is than that share of the picture.
  float above(double share) const;

  const Survey& picture_;
  Map brightness_, surroundings_;
  Slopes slopes_;
  std::vector<float> sorted_;  // brightness of the cells that count
  float median_;
  float highestProminence_ = 0;
};

Search::Search(const Survey& picture)
    : picture_(picture),
      brightness_(softBrightness(picture, lightBlur)),
      surroundings_(softBrightness(picture, surroundingsBlur)),
      slopes_(brightness_),
      sorted_(sortedValues(brightness_, picture.weight)),
      median_(sorted_.empty() ? 0 : sorted_[sorted_.size() / 2]) {
  for (int y = 0; y < brightness_.height; ++y) {
    for (int x = 0; x < brightness_.width; ++x) {
      highestProminence_ = std::max(highestProminence_, prominence({x, y}));
    }
  }
}

float Search::prominence(const Place& place) const {
  if (picture_.weight.at(place.x, place.y) == 0) return 0;
  return std::max(brightness_.at(place.x, place.y) - surroundings_.at(place.x, place.y), 0.0F) *
         std::max(contrast(place.x, place.y), 0.0F);
}

double Search::brighterShare(const Place& place) const {
  const auto first =
      std::lower_bound(sorted_.begin(), sorted_.end(), brightness_.at(place.x, place.y));
  return static_cast<double>(sorted_.end() - first) / static_cast<double>(sorted_.size());
}

// How steadily it gets brighter towards a place from all sides: 1 in a perfect glow, about 0 among
// edges and textures, which have slopes to all sides, and in flat areas.
double Search::glow(const Place& place, double radius) const {
  const double reach = radius * brightness_.diagonal();
  double towards = 0, weight = 0;
  forCellsAround(place.x, place.y, static_cast<int>(reach), brightness_, [&](int column, int row) {
    const double dx = place.x - column, dy = place.y - row;
    const double distance = std::hypot(dx, dy);
    if (distance == 0 || distance > reach) return;
    const double w = picture_.weight.at(column, row);
    towards += w * (slopes_.x.at(column, row) * dx + slopes_.y.at(column, row) * dy) / distance;
    weight += w;
  });
  return weight > 0 ? towards / weight : 0;
}

// The weights were fitted to marked photographs (tools/lights.txt) by logistic regression.
double Search::likelihood(const Place& place) const {
  const int toEdge = std::min(
      {place.x, brightness_.width - 1 - place.x, place.y, brightness_.height - 1 - place.y});
  const double prominenceHere = prominence(place) / (highestProminence_ + 1e-6);
  return std::log(prominenceHere + 0.03) -
         2.4 * std::log(std::max(brighterShare(place), 0.002))  // little is brighter
         + 4.3 * glow(place, 0.12)                // around a light it gets brighter towards it
         - 4.3 * place.y / brightness_.height     // water and floors reflect lights
         + 15 * toEdge / brightness_.diagonal();  // who composes a picture has the light inside
}

std::optional<Place> Search::likeliestPlace() const {
  std::optional<Place> best;
  double highest = 0;
  for (int y = candidateStep / 2; y < brightness_.height; y += candidateStep) {
    for (int x = candidateStep / 2; x < brightness_.width; x += candidateStep) {
      if (picture_.weight.at(x, y) == 0) continue;
      const Place place{x, y};
      const double likelihoodHere = likelihood(place);
      if (best && likelihoodHere <= highest) continue;
      highest = likelihoodHere;
      best = place;
    }
  }
  return best;
}

float Search::above(double share) const {
  const auto cell = static_cast<std::size_t>(share * static_cast<double>(sorted_.size()));
  return std::min(sorted_.back(), brightestShown) - std::min(sorted_[cell], brightestShown);
}

// The weights were fitted like those of the likelihood.
bool Search::isLight(const Place& place) const {
  const double wideGlow = glow(place, 0.25);
  const double rough = roughShare(picture_);
  // By day a thing without a glow is just white. In the dark, contrast is enough, and among many
  // edges a glow hardly shows.
  if (contrast(place.x, place.y) < leastLampContrast && wideGlow < leastGlow && rough < calmShare) {
    return false;
  }
  const Map wide = softBrightness(picture_, 0.05);
  const double slope = Gradient(wide, place.x, place.y).length() * wide.diagonal();
  return 3.8 * above(0.5) + 6.0 * above(0.75)  // a part of the picture is far brighter
             + 3.3 * wideGlow + 14.3 * whiteShare(picture_)  // lights are overexposed
             - 2.4 * rough                                   // among many edges, many are bright
             - 0.6 * std::min(slope, steepestSlope)  // in the middle of a light there is none
         >= leastLight;
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
  const Survey small = limited(survey(picture, mask));
  const Search search(small);
  const std::optional<Place> place = search.likeliestPlace();
  if (!place || !search.isLight(*place)) return std::nullopt;
  const Search::Center center = search.centerAround(*place);
  const auto position = [&small](double cells, int pixels) {
    return std::min((cells + 0.5) * small.cellSide / pixels, 1.0);
  };
  return Light{position(center.x, picture.width), position(center.y, picture.height),
               lowestShining(small, center.lightness)};
}

}  // namespace radiashafts::hosts
