#include "hosts/gimp/controls.h"

#include <array>
#include <string_view>

namespace radiashafts::gimp {
namespace {

constexpr int sliderWidth = 130;
constexpr int numberWidth = 7;         // characters
constexpr double beyondLimits = 1000;  // ends of numbers that have none

// Numbers of a large range are whole ones.
int digitsOf(const radiashafts_parameter& parameter) {
  return parameter.maximum - parameter.minimum > 100 ? 0 : 2;
}

}  // namespace

Controls::Controls(const Session& session, std::function<void()> changed)
    : session_(session), changed_(std::move(changed)) {
  widget_ = gtk_vbox_new(FALSE, 12);
  labels_ = gtk_size_group_new(GTK_SIZE_GROUP_HORIZONTAL);
  std::string_view group;
  for (const auto* parameter : parameters()) {
    if (group == parameter->group) continue;
    group = parameter->group;
    gtk_box_pack_start(GTK_BOX(widget_), makeGroup(parameter->group), FALSE, FALSE, 0);
  }
  g_object_unref(labels_);  // its labels have it
  refresh();
}

GtkWidget* Controls::makeGroup(const char* name) {
  GtkWidget* const frame = gimp_frame_new(name);
  GtkWidget* const table = gtk_table_new(1, 3, FALSE);
  gtk_table_set_col_spacings(GTK_TABLE(table), 6);
  gtk_table_set_row_spacings(GTK_TABLE(table), 3);
  gtk_container_add(GTK_CONTAINER(frame), table);
  int row = 0;
  for (const auto* parameter : parameters()) {
    if (std::string_view(parameter->group) == name) add(*parameter, GTK_TABLE(table), row++);
  }
  return frame;
}

void Controls::add(const radiashafts_parameter& parameter, GtkTable* table, int row) {
  Control& control = controls_.emplace_back(Control{this, &parameter, {}, {}});
  switch (parameter.kind) {
    case RADIASHAFTS_POSITION:
      return addPosition(control, table, row);
    case RADIASHAFTS_NUMBER:
      return addNumber(control, table, row);
    case RADIASHAFTS_SWITCH:
      return addSwitch(control, table, row);
    case RADIASHAFTS_COLOR:
      return addColor(control, table, row);
    case RADIASHAFTS_LIST:
      return addList(control, table, row);
  }
}

void Controls::addPosition(Control& control, GtkTable* table, int row) {
  GtkWidget* const box = gtk_hbox_new(TRUE, 6);
  std::array<GtkAdjustment*, 2> sides{};
  for (GtkAdjustment*& side : sides) {
    side = GTK_ADJUSTMENT(gtk_adjustment_new(0, -beyondLimits, beyondLimits, 0.01, 0.1, 0));
    GtkWidget* const number = gtk_spin_button_new(side, 0.01, 3);
    gtk_entry_set_width_chars(GTK_ENTRY(number), numberWidth);
    gimp_help_set_help_data(number, control.parameter->description, nullptr);
    gtk_box_pack_start(GTK_BOX(box), number, TRUE, TRUE, 0);
    g_signal_connect_swapped(side, "value-changed", G_CALLBACK(onChange), &control);
  }
  attach(control, table, row, box);
  control.show = [sides](const double* values) {
    gtk_adjustment_set_value(sides[0], values[0]);
    gtk_adjustment_set_value(sides[1], values[1]);
  };
  control.read = [sides](double* values) {
    values[0] = gtk_adjustment_get_value(sides[0]);
    values[1] = gtk_adjustment_get_value(sides[1]);
  };
}

void Controls::addNumber(Control& control, GtkTable* table, int row) {
  const radiashafts_parameter& parameter = *control.parameter;
  const int digits = digitsOf(parameter);
  const double step = digits == 0 ? 1 : 0.01;
  const bool hasOpenEnd = parameter.has_open_end != 0;
  GtkObject* const number = gimp_scale_entry_new(
      table, 0, row, labelOf(parameter).c_str(), sliderWidth, numberWidth, parameter.minimum,
      parameter.minimum, parameter.maximum, step, 10 * step, static_cast<guint>(digits),
      hasOpenEnd ? FALSE : TRUE, parameter.minimum, hasOpenEnd ? beyondLimits : parameter.maximum,
      parameter.description, nullptr);
  gtk_size_group_add_widget(labels_, GTK_WIDGET(GIMP_SCALE_ENTRY_LABEL(number)));
  GtkAdjustment* const adjustment = GTK_ADJUSTMENT(number);
  g_signal_connect_swapped(adjustment, "value-changed", G_CALLBACK(onChange), &control);
  control.show = [adjustment](const double* value) {
    gtk_adjustment_set_value(adjustment, *value);
  };
  control.read = [adjustment](double* value) { *value = gtk_adjustment_get_value(adjustment); };
}

void Controls::addSwitch(Control& control, GtkTable* table, int row) {
  GtkWidget* const button = gtk_check_button_new_with_mnemonic(labelOf(*control.parameter).c_str());
  gimp_help_set_help_data(button, control.parameter->description, nullptr);
  const auto at = static_cast<guint>(row);
  gtk_table_attach(table, button, 0, 3, at, at + 1, GTK_FILL, GTK_FILL, 0, 0);
  GtkToggleButton* const toggle = GTK_TOGGLE_BUTTON(button);
  g_signal_connect_swapped(toggle, "toggled", G_CALLBACK(onChange), &control);
  control.show = [toggle](const double* value) {
    gtk_toggle_button_set_active(toggle, *value != 0 ? TRUE : FALSE);
  };
  control.read = [toggle](double* value) { *value = gtk_toggle_button_get_active(toggle) ? 1 : 0; };
}

void Controls::addColor(Control& control, GtkTable* table, int row) {
  const GimpRGB white{1, 1, 1, 1};
  const std::string title = capitalized(control.parameter->label);
  GtkWidget* const widget =
      gimp_color_button_new(title.c_str(), sliderWidth, 18, &white, GIMP_COLOR_AREA_FLAT);
  GimpColorButton* const button = GIMP_COLOR_BUTTON(widget);
  gimp_color_button_set_update(button, TRUE);
  gimp_color_button_set_color_config(button, gimp_get_color_configuration());
  attach(control, table, row, widget);
  g_signal_connect_swapped(button, "color-changed", G_CALLBACK(onChange), &control);
  control.show = [button](const double* values) {
    const GimpRGB color{values[0], values[1], values[2], 1};
    gimp_color_button_set_color(button, &color);
  };
  control.read = [button](double* values) {
    GimpRGB color;
    gimp_color_button_get_color(button, &color);
    values[0] = color.r;
    values[1] = color.g;
    values[2] = color.b;
  };
}

void Controls::addList(Control& control, GtkTable* table, int row) {
  GtkWidget* const widget = gtk_combo_box_text_new();
  GtkComboBoxText* const texts = GTK_COMBO_BOX_TEXT(widget);
  for (int i = 0; i < control.parameter->entry_count; ++i) {
    const std::string entry = capitalized(control.parameter->entries[i]);
    gtk_combo_box_text_append_text(texts, entry.c_str());
  }
  attach(control, table, row, widget);
  GtkComboBox* const list = GTK_COMBO_BOX(widget);
  g_signal_connect_swapped(list, "changed", G_CALLBACK(onChange), &control);
  control.show = [list](const double* value) {
    gtk_combo_box_set_active(list, static_cast<int>(*value) - 1);
  };
  control.read = [list](double* value) { *value = gtk_combo_box_get_active(list) + 1; };
}

// A widget beside its label.
void Controls::attach(const Control& control, GtkTable* table, int row, GtkWidget* widget) {
  gimp_help_set_help_data(widget, control.parameter->description, nullptr);
  const std::string label = labelOf(*control.parameter);
  gtk_size_group_add_widget(
      labels_, gimp_table_attach_aligned(table, 0, row, label.c_str(), 0, 0.5, widget, 2, FALSE));
}

// "Ray _length": the first letter that no other control has is the mnemonic.
std::string Controls::labelOf(const radiashafts_parameter& parameter) {
  std::string label = capitalized(parameter.label);
  for (std::size_t i = 0; i < label.size(); ++i) {
    const char letter = g_ascii_tolower(label[i]);
    if (!g_ascii_isalpha(letter) || mnemonics_.find(letter) != std::string::npos) continue;
    mnemonics_ += letter;
    label.insert(i, "_");
    break;
  }
  return parameter.kind == RADIASHAFTS_SWITCH ? label : label + ":";
}

void Controls::onChange(Control* control) {
  Controls& controls = *control->owner;
  if (controls.isRefreshing_) return;
  std::array<double, 3> values{};
  control->read(values.data());
  radiashafts_set(controls.session_.get(), control->parameter->name, values.data());
  controls.changed_();
}

void Controls::refresh() {
  isRefreshing_ = true;
  for (const Control& control : controls_) {
    std::array<double, 3> values{};
    radiashafts_get(session_.get(), control.parameter->name, values.data());
    control.show(values.data());
  }
  isRefreshing_ = false;
}

}  // namespace radiashafts::gimp
