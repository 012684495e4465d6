#include "hosts/gimp/preset_row.h"

#include <algorithm>
#include <utility>

#include "hosts/gimp/last_values.h"

namespace radiashafts::gimp {
namespace {

// Columns of the list. A preset of the shipped collection has no file.
enum Column { nameColumn, titleColumn, descriptionColumn, fileColumn, columnCount };

// "sun_through_leaves" as "Sun through leaves".
std::string titleOf(const char* name) {
  std::string title = capitalized(name);
  std::replace(title.begin(), title.end(), '_', ' ');
  return title;
}

GtkWidget* makeList(GtkListStore* presets) {
  // A list with a scroll bar: the presets are too many for a menu. Where the engine of GIMP's
  // themes is missing, they would write the selected row in the color of its ground.
  gtk_rc_parse_string(
      "style \"presets\" { GtkComboBox::appears-as-list = 1 }\n"
      "widget \"*.radiashafts-presets\" style \"presets\"\n"
      "style \"presets-selected\" { base[SELECTED] = \"#4a6fa5\" base[ACTIVE] = \"#4a6fa5\" }\n"
      "widget \"gtk-combobox-popup-window.*\" style \"presets-selected\"");
  GtkWidget* const list = gtk_combo_box_new_with_model(GTK_TREE_MODEL(presets));
  gtk_widget_set_name(list, "radiashafts-presets");
  GtkCellLayout* const layout = GTK_CELL_LAYOUT(list);
  GtkCellRenderer* const title = gtk_cell_renderer_text_new();
  gtk_cell_layout_pack_start(layout, title, FALSE);
  gtk_cell_layout_add_attribute(layout, title, "text", titleColumn);
  GtkCellRenderer* const description = gtk_cell_renderer_text_new();
  g_object_set(description, "scale", PANGO_SCALE_SMALL, "ellipsize", PANGO_ELLIPSIZE_END, "xpad", 6,
               nullptr);
  gtk_cell_layout_pack_start(layout, description, TRUE);
  gtk_cell_layout_add_attribute(layout, description, "text", descriptionColumn);
  gimp_help_set_help_data(list, "Start from a preset of the collection or from one of your own",
                          nullptr);
  return list;
}

GtkWidget* makeButton(const char* label, const char* icon, const char* help) {
  GtkWidget* const button = gtk_button_new_with_mnemonic(label);
  gtk_button_set_image(GTK_BUTTON(button),
                       gtk_image_new_from_icon_name(icon, GTK_ICON_SIZE_BUTTON));
  gimp_help_set_help_data(button, help, nullptr);
  return button;
}

}  // namespace

PresetRow::PresetRow(const Session& session, std::function<void()> chosen)
    : session_(session), chosen_(std::move(chosen)), ownFile_(ownPresetFile()) {
  presets_ =
      gtk_list_store_new(columnCount, G_TYPE_STRING, G_TYPE_STRING, G_TYPE_STRING, G_TYPE_STRING);
  list_ = makeList(presets_);
  g_object_unref(presets_);  // the list has it
  GtkWidget* const save =
      makeButton("Sa_ve...", GIMP_ICON_DOCUMENT_SAVE, "Keep these values as a preset of your own");
  GtkWidget* const open = makeButton("Open...", GIMP_ICON_DOCUMENT_OPEN,
                                     "Choose the file that your own presets are in");
  GtkWidget* const label = gtk_label_new_with_mnemonic("Prese_t:");
  gtk_label_set_mnemonic_widget(GTK_LABEL(label), list_);
  widget_ = gtk_hbox_new(FALSE, 6);
  gtk_box_pack_start(GTK_BOX(widget_), label, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(widget_), list_, TRUE, TRUE, 0);
  gtk_box_pack_start(GTK_BOX(widget_), save, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(widget_), open, FALSE, FALSE, 0);
  fill();
  g_signal_connect_swapped(list_, "changed", G_CALLBACK(+[](PresetRow* row) { row->choose(); }),
                           this);
  g_signal_connect_swapped(save, "clicked", G_CALLBACK(+[](PresetRow* row) { row->askForName(); }),
                           this);
  g_signal_connect_swapped(open, "clicked", G_CALLBACK(+[](PresetRow* row) { row->open(); }), this);
}

void PresetRow::forget() {
  gtk_combo_box_set_active(GTK_COMBO_BOX(list_), -1);
}

// The user's own presets, then the collection. False when the user's file cannot be used.
bool PresetRow::fill() {
  gtk_list_store_clear(presets_);
  const bool isThere = g_file_test(ownFile_.c_str(), G_FILE_TEST_EXISTS) != FALSE;
  const bool isUsable = !isThere || addPresetsOf(ownFile_.c_str());
  addPresetsOf(nullptr);
  return isUsable;
}

bool PresetRow::addPresetsOf(const char* file) {
  struct Target {
    GtkListStore* presets;
    const char* file;
  } target{presets_, file};
  const auto add = [](void* context, const char* name, const char* description) {
    const auto& [presets, ownFile] = *static_cast<Target*>(context);
    const std::string title = titleOf(name);
    const std::string text = ownFile == nullptr ? description : "your own";
    gtk_list_store_insert_with_values(presets, nullptr, -1, nameColumn, name, titleColumn,
                                      title.c_str(), descriptionColumn, text.c_str(), fileColumn,
                                      ownFile, -1);
  };
  try {
    check(session_, radiashafts_list_presets(session_.get(), file, add, &target));
    return true;
  } catch (const Failure& failure) {
    tell(failure.what());
    return false;
  }
}

void PresetRow::choose() {
  GtkTreeIter chosen;
  if (!gtk_combo_box_get_active_iter(GTK_COMBO_BOX(list_), &chosen)) return;
  gchar* name = nullptr;
  gchar* file = nullptr;
  gtk_tree_model_get(GTK_TREE_MODEL(presets_), &chosen, nameColumn, &name, fileColumn, &file, -1);
  try {
    check(session_, radiashafts_load_preset(session_.get(), file, name));
    chosen_();
  } catch (const Failure& failure) {
    tell(failure.what());
  }
  g_free(name);
  g_free(file);
}

void PresetRow::askForName() {
  GtkWidget* const window = gtk_widget_get_toplevel(widget_);
  const auto named = +[](GtkWidget* /*box*/, const gchar* name, gpointer row) {
    static_cast<PresetRow*>(row)->save(name);
  };
  GtkWidget* const box =
      gimp_query_string_box("Save Preset", window, nullptr, nullptr, "The preset's name:", "",
                            G_OBJECT(widget_), "destroy", named, this);
  gtk_window_set_modal(GTK_WINDOW(box), TRUE);
  gtk_widget_show(box);
}

// Names are the same in any case, and with blanks or underscores in them.
bool PresetRow::hasOwn(const char* name) const {
  const std::string wanted = titleOf(name);
  GtkTreeModel* const presets = GTK_TREE_MODEL(presets_);
  bool found = false;
  GtkTreeIter row;
  for (gboolean isRow = gtk_tree_model_get_iter_first(presets, &row); isRow != FALSE && !found;
       isRow = gtk_tree_model_iter_next(presets, &row)) {
    gchar* title = nullptr;
    gchar* file = nullptr;
    gtk_tree_model_get(presets, &row, titleColumn, &title, fileColumn, &file, -1);
    found = file != nullptr && g_ascii_strcasecmp(title, wanted.c_str()) == 0;
    g_free(title);
    g_free(file);
  }
  return found;
}

bool PresetRow::mayReplace(const char* name) const {
  GtkWidget* const box = gtk_message_dialog_new(
      GTK_WINDOW(gtk_widget_get_toplevel(widget_)), GTK_DIALOG_MODAL, GTK_MESSAGE_QUESTION,
      GTK_BUTTONS_NONE, "There is a preset \"%s\" of your own. Replace it?", titleOf(name).c_str());
  gtk_dialog_add_buttons(GTK_DIALOG(box), "_Cancel", GTK_RESPONSE_CANCEL, "_Replace",
                         GTK_RESPONSE_OK, nullptr);
  const bool replaces = gtk_dialog_run(GTK_DIALOG(box)) == GTK_RESPONSE_OK;
  gtk_widget_destroy(box);
  return replaces;
}

void PresetRow::save(const char* name) {
  if (hasOwn(name) && !mayReplace(name)) return;
  try {
    check(session_, radiashafts_save_preset(session_.get(), ownFile_.c_str(), name));
    fill();
  } catch (const Failure& failure) {
    tell(failure.what());
  }
}

void PresetRow::open() {
  GtkWidget* const chooser =
      gtk_file_chooser_dialog_new("Open Preset File", GTK_WINDOW(gtk_widget_get_toplevel(widget_)),
                                  GTK_FILE_CHOOSER_ACTION_OPEN, "_Cancel", GTK_RESPONSE_CANCEL,
                                  "_Open", GTK_RESPONSE_OK, nullptr);
  gtk_file_chooser_set_filename(GTK_FILE_CHOOSER(chooser), ownFile_.c_str());
  if (gtk_dialog_run(GTK_DIALOG(chooser)) == GTK_RESPONSE_OK) {
    gchar* const file = gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(chooser));
    const std::string before = std::exchange(ownFile_, file);
    g_free(file);
    if (!fill()) {
      ownFile_ = before;
      fill();
    }
  }
  gtk_widget_destroy(chooser);
}

void PresetRow::tell(const std::string& failure) const {
  GtkWidget* const window = gtk_widget_get_toplevel(widget_);
  GtkWidget* const box =
      gtk_message_dialog_new(GTK_IS_WINDOW(window) ? GTK_WINDOW(window) : nullptr, GTK_DIALOG_MODAL,
                             GTK_MESSAGE_ERROR, GTK_BUTTONS_CLOSE, "%s", failure.c_str());
  gtk_dialog_run(GTK_DIALOG(box));
  gtk_widget_destroy(box);
}

}  // namespace radiashafts::gimp
