#include "hosts/gimp/preview.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include <gdk/gdkkeysyms.h>

namespace radiashafts::gimp {
namespace {

constexpr int minimumWidth = 420;
constexpr int minimumHeight = 320;
constexpr int margin = 24;  // around the picture, for a light outside
constexpr int splitReach = 5;
constexpr guint reloadDelay = 120;  // milliseconds after the last change of the size
constexpr char hint[] = "Drag the light or use the arrow keys; hold B to compare.";

std::vector<std::uint8_t> displayed(const Picture& picture, const Babl* format) {
  const auto count =
      static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height);
  std::vector<std::uint8_t> bytes(4 * count);
  babl_process(babl_fish(format, babl_format("R'G'B'A u8")), picture.bytes.data(), bytes.data(),
               static_cast<glong>(count));
  return bytes;
}

// A small sun, for bright and dark grounds.
void drawSun(cairo_t* cairo, double x, double y, bool isFocused) {
  constexpr double radius = 6;
  cairo_new_path(cairo);
  cairo_arc(cairo, x, y, radius, 0, 2 * std::numbers::pi);
  for (int ray = 0; ray < 8; ++ray) {
    const double angle = ray * std::numbers::pi / 4;
    cairo_move_to(cairo, x + 1.5 * radius * std::cos(angle), y + 1.5 * radius * std::sin(angle));
    cairo_line_to(cairo, x + 2.2 * radius * std::cos(angle), y + 2.2 * radius * std::sin(angle));
  }
  cairo_set_line_cap(cairo, CAIRO_LINE_CAP_ROUND);
  cairo_set_source_rgba(cairo, 0, 0, 0, 0.6);
  cairo_set_line_width(cairo, 4);
  cairo_stroke_preserve(cairo);
  cairo_set_source_rgb(cairo, 1, 1, isFocused ? 0.6 : 1);
  cairo_set_line_width(cairo, 1.8);
  cairo_stroke(cairo);
}

}  // namespace

Preview::Preview(const Drawable& drawable, const Session& session, std::function<void()> changed)
    : drawable_(drawable),
      session_(session),
      changed_(std::move(changed)),
      displayFormat_(drawable.displayFormat()) {
  widget_ = gtk_vbox_new(FALSE, 6);
  GtkWidget* const frame = gtk_frame_new(nullptr);
  gtk_frame_set_shadow_type(GTK_FRAME(frame), GTK_SHADOW_IN);
  area_ = gimp_preview_area_new();
  gimp_preview_area_set_color_config(GIMP_PREVIEW_AREA(area_), gimp_get_color_configuration());
  gtk_widget_set_size_request(area_, minimumWidth, minimumHeight);
  gtk_widget_set_can_focus(area_, TRUE);
  gtk_container_add(GTK_CONTAINER(frame), area_);
  gtk_box_pack_start(GTK_BOX(widget_), frame, TRUE, TRUE, 0);
  gtk_box_pack_start(GTK_BOX(widget_), makeSwitches(), FALSE, FALSE, 0);
  connectSignals();
}

Preview::~Preview() {
  if (reload_ != 0) g_source_remove(reload_);
}

GtkWidget* Preview::makeSwitches() {
  GtkWidget* const row = gtk_hbox_new(FALSE, 12);
  withRays_ = gtk_check_button_new_with_mnemonic("_Preview");
  gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(withRays_), TRUE);
  gimp_help_set_help_data(withRays_, "Show the picture with the rays", nullptr);
  split_ = gtk_check_button_new_with_mnemonic("_Split view");
  gimp_help_set_help_data(split_, "Show the picture without rays left of a line that you can drag",
                          nullptr);
  GtkWidget* const find = gtk_button_new_with_mnemonic("_Find light");
  gimp_help_set_help_data(find, "Move the light to the brightest part of the picture", nullptr);
  g_signal_connect_swapped(find, "clicked", G_CALLBACK(onFind), this);
  caption_ = gtk_label_new(hint);
  gtk_label_set_ellipsize(GTK_LABEL(caption_), PANGO_ELLIPSIZE_END);
  gtk_misc_set_alignment(GTK_MISC(caption_), 0, 0.5);
  gimp_label_set_attributes(GTK_LABEL(caption_), PANGO_ATTR_SCALE, PANGO_SCALE_SMALL, -1);
  for (GtkWidget* button : {withRays_, split_}) {
    gtk_box_pack_start(GTK_BOX(row), button, FALSE, FALSE, 0);
    const auto toggled = +[](Preview* preview) { preview->draw(); };
    g_signal_connect_swapped(button, "toggled", G_CALLBACK(toggled), this);
  }
  gtk_box_pack_start(GTK_BOX(row), caption_, TRUE, TRUE, 0);
  gtk_box_pack_start(GTK_BOX(row), find, FALSE, FALSE, 0);
  return row;
}

void Preview::connectSignals() {
  gtk_widget_add_events(area_, GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK |
                                   GDK_POINTER_MOTION_MASK | GDK_KEY_PRESS_MASK |
                                   GDK_KEY_RELEASE_MASK);
  g_signal_connect_swapped(area_, "size-allocate", G_CALLBACK(onAllocate), this);
  g_signal_connect_after(area_, "expose-event", G_CALLBACK(onExpose), this);
  g_signal_connect(area_, "button-press-event", G_CALLBACK(onPress), this);
  g_signal_connect(area_, "button-release-event", G_CALLBACK(onRelease), this);
  g_signal_connect(area_, "motion-notify-event", G_CALLBACK(onMotion), this);
  g_signal_connect(area_, "key-press-event", G_CALLBACK(onKey), this);
  g_signal_connect(area_, "key-release-event", G_CALLBACK(onKey), this);
}

// --- The picture ---------------------------------------------------------------------------------

void Preview::onAllocate(Preview* preview) {
  GtkAllocation area;
  gtk_widget_get_allocation(preview->area_, &area);
  preview->draw();  // the widget may have forgotten what was drawn
  if (area.width == preview->areaWidth_ && area.height == preview->areaHeight_) return;
  preview->areaWidth_ = area.width;
  preview->areaHeight_ = area.height;
  if (preview->reload_ != 0) g_source_remove(preview->reload_);
  const auto reload = [](gpointer data) -> gboolean {
    auto& self = *static_cast<Preview*>(data);
    self.reload_ = 0;
    self.reload();
    return G_SOURCE_REMOVE;
  };
  preview->reload_ =
      g_timeout_add(preview->renderer_ == nullptr ? 0 : reloadDelay, reload, preview);
}

// Takes a copy of the drawable that fits the area.
void Preview::reload() {
  Picture picture = drawable_.reducedPicture(areaWidth_ - 2 * margin, areaHeight_ - 2 * margin);
  next_ = Copy{picture.width,
               picture.height,
               displayed(picture, displayFormat_),
               {},
               drawable_.reducedSelection(picture)};
  renderer_ = std::make_unique<PreviewRenderer>(
      std::move(picture), [this](const PreviewRenderer::Result& result) { show(result); });
  update();
}

void Preview::update() {
  if (renderer_ != nullptr) renderer_->render(valuesOf(session_));
  gtk_widget_queue_draw(area_);  // the light may have moved
}

void Preview::show(const PreviewRenderer::Result& result) {
  gtk_label_set_text(GTK_LABEL(caption_), result.failure.empty() ? hint : result.failure.c_str());
  if (next_) {
    shown_ = std::move(*next_);
    next_.reset();
    gimp_preview_area_set_max_size(GIMP_PREVIEW_AREA(area_), shown_.width, shown_.height);
    gtk_widget_queue_resize(area_);  // takes the new size over
  }
  if (result.failure.empty() || shown_.after.empty())
    shown_.after = displayed(result.picture, displayFormat_);
  draw();
  if (!result.found) return;
  setValues(session_, *result.found);
  changed_();
}

void Preview::draw() {
  if (shown_.after.empty()) return;
  const int split = splitColumn();
  drawColumns(0, split, false);
  drawColumns(split, shown_.width, true);
  gtk_widget_queue_draw(area_);
}

// Columns left of it are without rays.
int Preview::splitColumn() const {
  const bool withRays = gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(withRays_)) != FALSE;
  if (!withRays || isBeforeHeld_) return shown_.width;
  if (!gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(split_))) return 0;
  return static_cast<int>(std::lround(splitShare_ * shown_.width));
}

void Preview::drawColumns(int from, int to, bool withRays) {
  if (from >= to) return;
  GimpPreviewArea* const area = GIMP_PREVIEW_AREA(area_);
  const std::size_t start = 4 * static_cast<std::size_t>(from);
  const std::uint8_t* const before = shown_.before.data() + start;
  const std::uint8_t* const after = shown_.after.data() + start;
  const int rowBytes = 4 * shown_.width;
  if (withRays && !shown_.selection.empty()) {
    gimp_preview_area_mask(area, from, 0, to - from, shown_.height, GIMP_RGBA_IMAGE, before,
                           rowBytes, after, rowBytes, shown_.selection.data() + from, shown_.width);
  } else {
    gimp_preview_area_draw(area, from, 0, to - from, shown_.height, GIMP_RGBA_IMAGE,
                           withRays ? after : before, rowBytes);
  }
}

gboolean Preview::onExpose(GtkWidget* area, GdkEventExpose* event, Preview* preview) {
  cairo_t* const cairo = gdk_cairo_create(gtk_widget_get_window(area));
  gdk_cairo_region(cairo, event->region);
  cairo_clip(cairo);
  preview->drawOverlay(cairo);
  cairo_destroy(cairo);
  return FALSE;
}

// The line of the split view, and the light.
void Preview::drawOverlay(cairo_t* cairo) const {
  const GdkRectangle picture = pictureArea();
  const int split = splitColumn();
  if (split > 0 && split < shown_.width) {
    cairo_rectangle(cairo, picture.x + split - 1, picture.y, 1, picture.height);
    cairo_set_source_rgb(cairo, 1, 1, 1);
    cairo_fill(cairo);
    cairo_rectangle(cairo, picture.x + split, picture.y, 1, picture.height);
    cairo_set_source_rgb(cairo, 0, 0, 0);
    cairo_fill(cairo);
  }
  // A light that is farther outside is shown at the edge.
  const Point at = light();
  drawSun(cairo, std::clamp<double>(at.x, 0, areaWidth_), std::clamp<double>(at.y, 0, areaHeight_),
          gtk_widget_has_focus(area_));
}

// --- The user ------------------------------------------------------------------------------------

// Where the picture stands in the area.
GdkRectangle Preview::pictureArea() const {
  return {(areaWidth_ - shown_.width) / 2, (areaHeight_ - shown_.height) / 2,
          std::max(1, shown_.width), std::max(1, shown_.height)};
}

Preview::Point Preview::light() const {
  double share[2] = {};
  radiashafts_get(session_.get(), originParameter().name, share);
  const GdkRectangle picture = pictureArea();
  return {picture.x + share[0] * picture.width, picture.y + share[1] * picture.height};
}

void Preview::moveLight(Point to) {
  const GdkRectangle picture = pictureArea();
  const double share[2] = {(to.x - picture.x) / picture.width, (to.y - picture.y) / picture.height};
  radiashafts_set(session_.get(), originParameter().name, share);
  changed_();
}

bool Preview::isNearSplit(double x) const {
  const int split = splitColumn();
  return split > 0 && split < shown_.width && std::abs(x - pictureArea().x - split) <= splitReach;
}

void Preview::drag(Point to) {
  if (drag_ == Drag::light) moveLight(to);
  if (drag_ != Drag::split) return;
  const GdkRectangle picture = pictureArea();
  splitShare_ = std::clamp((to.x - picture.x) / picture.width, 0.01, 0.99);
  draw();
}

void Preview::holdBefore(bool isHeld) {
  if (isHeld == isBeforeHeld_) return;
  isBeforeHeld_ = isHeld;
  draw();
}

void Preview::onFind(Preview* preview) {
  if (preview->renderer_ != nullptr) preview->renderer_->findLight(valuesOf(preview->session_));
}

gboolean Preview::onPress(GtkWidget* area, GdkEventButton* event, Preview* preview) {
  gtk_widget_grab_focus(area);
  if (event->type != GDK_BUTTON_PRESS) return TRUE;
  if (event->button == 2) preview->holdBefore(true);
  if (event->button == 1) {
    preview->drag_ = preview->isNearSplit(event->x) ? Drag::split : Drag::light;
    preview->drag({event->x, event->y});
  }
  return TRUE;
}

gboolean Preview::onRelease(GtkWidget* /*area*/, GdkEventButton* event, Preview* preview) {
  if (event->button == 2) preview->holdBefore(false);
  if (event->button == 1) preview->drag_ = Drag::none;
  return TRUE;
}

gboolean Preview::onMotion(GtkWidget* area, GdkEventMotion* event, Preview* preview) {
  if (preview->drag_ != Drag::none) {
    preview->drag({event->x, event->y});
  } else {
    GdkCursor* const cursor = gdk_cursor_new_for_display(
        gtk_widget_get_display(area),
        preview->isNearSplit(event->x) ? GDK_SB_H_DOUBLE_ARROW : GDK_CROSSHAIR);
    gdk_window_set_cursor(gtk_widget_get_window(area), cursor);
    gdk_cursor_unref(cursor);
  }
  return TRUE;
}

gboolean Preview::onKey(GtkWidget* /*area*/, GdkEventKey* event, Preview* preview) {
  const bool isPress = event->type == GDK_KEY_PRESS;
  const double step = (event->state & GDK_SHIFT_MASK) != 0 ? 10 : 1;
  Point to = preview->light();
  switch (event->keyval) {
    case GDK_KEY_b:
    case GDK_KEY_B:
      preview->holdBefore(isPress);
      return TRUE;
    case GDK_KEY_Left:
      to.x -= step;
      break;
    case GDK_KEY_Right:
      to.x += step;
      break;
    case GDK_KEY_Up:
      to.y -= step;
      break;
    case GDK_KEY_Down:
      to.y += step;
      break;
    default:
      return FALSE;
  }
  if (isPress) preview->moveLight(to);
  return TRUE;
}

}  // namespace radiashafts::gimp
