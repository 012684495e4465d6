// The live picture in the dialog, with the light as a handle.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <libgimp/gimp.h>
#include <libgimp/gimpui.h>

#include "hosts/gimp/drawable.h"
#include "hosts/gimp/preview_renderer.h"
#include "hosts/gimp/session.h"

namespace radiashafts::gimp {

class Preview {
 public:
  // When the user moves the light or it is found, the session has its place and changed is called.
  Preview(const Drawable& drawable, const Session& session, std::function<void()> changed);
  ~Preview();
  Preview(const Preview&) = delete;
  Preview& operator=(const Preview&) = delete;

  GtkWidget* widget() const { return widget_; }

  // Renders the session's values.
  void update();

 private:
  // A reduced copy of the drawable, four bytes a pixel.
  struct Copy {
    int width, height;
    std::vector<std::uint8_t> before, after;
    std::vector<std::uint8_t> selection;  // one byte a pixel; empty: everything
  };
  enum class Drag { none, light, split };
  struct Point {
    double x, y;
  };

  void connectSignals();
  GtkWidget* makeSwitches();
  void reload();
  void show(const PreviewRenderer::Result& result);
  void draw();
  void drawColumns(int from, int to, bool withRays);
  void drawOverlay(cairo_t* cairo) const;
  int splitColumn() const;

  GdkRectangle pictureArea() const;
  Point light() const;
  void moveLight(Point to);
  bool isNearSplit(double x) const;
  void drag(Point to);
  void holdBefore(bool isHeld);

  static void onAllocate(Preview* preview);
  static gboolean onExpose(GtkWidget* area, GdkEventExpose* event, Preview* preview);
  static void onFind(Preview* preview);
  static gboolean onPress(GtkWidget* area, GdkEventButton* event, Preview* preview);
  static gboolean onRelease(GtkWidget* area, GdkEventButton* event, Preview* preview);
  static gboolean onMotion(GtkWidget* area, GdkEventMotion* event, Preview* preview);
  static gboolean onKey(GtkWidget* area, GdkEventKey* event, Preview* preview);

  const Drawable& drawable_;
  const Session& session_;
  std::function<void()> changed_;
  const Babl* displayFormat_;
  GtkWidget* widget_ = nullptr;
  GtkWidget* area_ = nullptr;
  GtkWidget* withRays_ = nullptr;
  GtkWidget* split_ = nullptr;
  GtkWidget* caption_ = nullptr;
  int areaWidth_ = 0;  // that the copy was made for
  int areaHeight_ = 0;
  guint reload_ = 0;  // the source that will reload
  Copy shown_{};
  std::optional<Copy> next_;  // shown when its first render is there
  double splitShare_ = 0.5;   // of the width
  Drag drag_ = Drag::none;
  bool isBeforeHeld_ = false;
  std::unique_ptr<PreviewRenderer> renderer_;
};

}  // namespace radiashafts::gimp
