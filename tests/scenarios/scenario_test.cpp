// Plays scenarios: text files whose lines say what a user does and what is then to be seen. A line
// is a verb and words, in double quotes where they have blanks; $folder is the folder of the test's
// files, $golden that of expected ones. Controls go by what stands on them or beside them, and
// NAME@X,Y is a place near the middle of a control or of the preview.

#include <windows.h>

#include <algorithm>
#include <iomanip>
#include <memory>
#include <numeric>
#include <regex>

#include <commctrl.h>
#include <gtest/gtest.h>

#include "interface/win32/dialog_ids.h"
#include "parameters/effect_table.h"
#include "tests/scenarios/hosts.h"
#include "tests/support/test_pictures.h"

namespace radiashafts::test {
namespace {

using Words = std::vector<std::string>;
using Text = const std::string&;

void require(bool holds, Text otherwise) {
  if (!holds) throw std::runtime_error(otherwise);
}

std::string joined(const std::vector<LONG>& numbers, const char* sign) {
  std::string text;
  for (const LONG number : numbers) text += (text.empty() ? "" : sign) + std::to_string(number);
  return text;
}

std::string yesOrNo(BOOL holds) {
  return holds != FALSE ? "yes" : "no";
}

// Numbers of the controls that have no text of their own.
std::map<std::string, int> controlIds() {
  std::map<std::string, int> ids{
      {"presets", ID_PRESETS}, {"zoom", ID_PERCENTAGE}, {"name", ID_SETTING_NAME}};
  for (const ParameterFacts& facts : effectTable) {
    const std::string label = facts.labels[0] != nullptr ? facts.labels[0] : "amount";
    ids[label] = facts.controls[0];
    if (facts.kind == ParameterKind::number) ids[label + " slider"] = facts.controls[1];
    if (facts.kind == ParameterKind::position) ids[facts.labels[1]] = facts.controls[1];
  }
  return ids;
}

template <class Visit>
void forEachChild(HWND dialog, const Visit& visit) {
  for (HWND child = nullptr; (child = FindWindowExA(dialog, child, nullptr, nullptr)) != nullptr;) {
    std::string text = textOf(child);
    std::erase_if(text, [](char c) { return c == '&' || c == '\r'; });  // of underlined letters
    visit(child, classOf(child), text);
  }
}

void store(Text name, Text value) {
  const DWORD number = std::strtoul(value.c_str(), nullptr, 10);
  const bool isNumber = std::isdigit(value[0]) != 0;
  RegSetKeyValueA(HKEY_CURRENT_USER, R"(SOFTWARE\Halvorsund\Photoshop\Radiashafts)", name.c_str(),
                  isNumber ? REG_DWORD : REG_SZ,
                  isNumber ? static_cast<const void*>(&number) : value.c_str(),
                  static_cast<DWORD>(isNumber ? sizeof number : value.size() + 1));
}

// A "|" ends a line.
void writeFile(Text name, std::string text) {
  std::replace(text.begin(), text.end(), '|', '\n');
  std::ofstream(workFolder() / name) << text;
}

// Without addresses and what differs from machine to machine: how many workers there are.
std::string trace() {
  std::string text = contentsOf(workFolder() / "log.txt");
  const std::pair<const char*, const char*> replacements[] = {
      {"\r|[A-Z]:[^\\s)]*scenarios", ""},
      {"0x0x[0-9a-f]+", "0x#"},
      {"pFilter\\(0x[0-9a-f]+", "pFilter(#"},
      {" *(thread \\d+ started|waiting for thread \\d+ to finish.*)\n", ""}};
  for (const auto& [pattern, with] : replacements) {
    text = std::regex_replace(text, std::regex(pattern), with);
  }
  return text;
}

// Wanted is a text, a number, or a range "low to high". The result is empty where found matches it.
std::string difference(Text found, Text wanted) {
  double number = 0.0, low = 0.0, high = 0.0;
  const int limits = std::sscanf(wanted.c_str(), "%lf to %lf", &low, &high);
  const bool isOneNumber = std::sscanf(found.c_str(), "%lf", &number) == 1 &&
                           found.find_first_of(", ") == std::string::npos && limits > 0;
  if (limits == 1) high = low;
  if (found == wanted || (isOneNumber && number > low - 1e-6 && number < high + 1e-6)) return "";
  const auto end = std::mismatch(found.begin(), found.end(), wanted.begin(), wanted.end()).first;
  const std::size_t line = std::string(found.begin(), end).rfind('\n') + 1;
  return '"' + found.substr(line, found.find('\n', line) - line) + "\" and not \"" +
         wanted.substr(line, wanted.find('\n', line) - line) + '"';
}

class Player {
 public:
  Player() {
    // Wine's window system starts with its first window, and two threads that both have the first
    // one may wait for each other for ever.
    DestroyWindow(CreateWindowA("STATIC", "", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr));
    std::error_code heldOpen;  // by a program that is just ending
    std::filesystem::remove_all(workFolder(), heldOpen);
    RegDeleteTreeA(HKEY_CURRENT_USER, "SOFTWARE\\Halvorsund");
    for (const auto& [name, number] :
         {std::pair{"Interface Position X", "20"}, std::pair{"Interface Position Y", "40"},
          std::pair{"Preview Position X", "400"}, std::pair{"Preview Position Y", "40"},
          std::pair{"Preview Position Width", "420"},
          std::pair{"Preview Position Height", "420"}}) {
      store(name, number);
    }
  }

  void perform(std::string line) {
    for (const auto& [name, path] : {std::pair{"$folder", workFolder().string()},
                                     std::pair{"$golden", std::string(RADIASHAFTS_GOLDEN)}}) {
      for (std::size_t at = 0; (at = line.find(name)) != std::string::npos;)
        line.replace(at, 7, path);
    }
    std::istringstream stream(line + " then");
    Words words;
    for (std::string word; stream >> std::quoted(word, '"', '^'); words.push_back(word)) {
      if (word != "then") continue;
      act(words);
      words.clear();
      stream >> std::quoted(word, '"', '^');
      if (!stream) return;
    }
  }
  bool isDone() const { return isDone_; }

 private:
  void act(const Words& words) {
    require(verbs_.contains(words.at(0)), "there is no verb " + words[0]);
    const auto& [count, action] = verbs_.at(words[0]);
    const std::size_t step = count == 0 ? words.size() : count;
    for (std::size_t at = 1; at < words.size(); at += step) {
      if (IsWindow(dialog_) == FALSE) dialog_ = panel_;  // a box is gone
      action({words.begin() + at, words.begin() + std::min(at + step, words.size())});
    }
  }

  // A verb takes so many words at a time, or with 0 all that follow.
  struct Verb {
    std::size_t words;
    std::function<void(const Words&)> action;
  };
  const std::map<std::string, Verb> verbs_{
      {"store", {2, [](const Words& w) { store(w[0], w[1]); }}},
      {"file", {2, [](const Words& w) { writeFile(w[0], w[1]); }}},
      {"scaling", {1, [this](const Words& w) { scaling(std::stoi(w[0])); }}},
      {"host", {0, [this](const Words& w) { startHost(w); }}},
      {"open", {0, [this](const Words& w) { startHost(w), enter("dialog"); }}},
      {"program", {0, [this](const Words& w) { startProgram(w); }}},
      {"in", {1, [this](const Words& w) { enter(w[0]); }}},
      {"click", {1, [this](const Words& w) { drag(w[0], w[0], false); }}},
      {"right-click", {1, [this](const Words& w) { drag(w[0], w[0], true); }}},
      {"drag", {2, [this](const Words& w) { drag(w[0], w[1], false); }}},
      {"right-drag", {2, [this](const Words& w) { drag(w[0], w[1], true); }}},
      {"focus", {1, [this](const Words& w) { focus(w[0]); }}},
      {"type", {2, [this](const Words& w) { focus(w[0]), write(w[1]); }}},
      {"write", {1, [this](const Words& w) { write(w[0]); }}},
      {"key", {1, [](const Words& w) { pressKey(w[0]); }}},
      {"hold", {1, [](const Words& w) { sendKey(static_cast<WORD>(w[0][0]), 0); }}},
      {"release",
       {1, [](const Words& w) { sendKey(static_cast<WORD>(w[0][0]), KEYEVENTF_KEYUP); }}},
      {"visit", {1, [](const Words& w) { visitWindow(w[0]); }}},
      {"leave", {2, [this](const Words& w) { leave(w[0], w[1]); }}},
      {"move", {2, [this](const Words& w) { moveWindow(w[0], w[1]); }}},
      {"resize", {2, [this](const Words& w) { resizeAsUser(w[0], w[1]); }}},
      {"maximize", {1, [this](const Words& w) { ShowWindowAsync(window(w[0]), SW_MAXIMIZE); }}},
      {"restore", {1, [this](const Words& w) { ShowWindowAsync(window(w[0]), SW_RESTORE); }}},
      {"close", {1, [this](const Words& w) { PostMessageA(window(w[0]), WM_CLOSE, 0, 0); }}},
      {"expect", {2, [this](const Words& w) { expect(w[0], w[1]); }}}};

  // What can be expected, by its first word; any other word names a control.
  const std::map<std::string, std::function<std::string(Text)>> sights_{
      {"status", [this](Text) { return std::to_string(host_->status()); }},
      {"quit-code", [this](Text) { return std::to_string(host_->quitCode()); }},
      {"says", [](Text text) { return yesOrNo(Host::output().find(text) != std::string::npos); }},
      {"trace", [](Text) { return trace(); }},
      {"drawings", [](Text) { return std::to_string(count(trace(), "DrawToPreview()\n")); }},
      {"file", [](Text name) { return contentsOf(workFolder() / name); }},
      {"enabled", [this](Text name) { return yesOrNo(IsWindowEnabled(window(name))); }},
      {"maximized", [this](Text name) { return yesOrNo(IsZoomed(window(name))); }},
      {"place", [this](Text name) { return placeOfWindow(window(name)); }},
      {"box", [this](Text caption) { return box(caption); }},
      {"focus", [this](Text) { return nameOf(focused()); }},
      {"tab-order", [this](Text) { return tabOrder(); }},
      {"cut-controls", [this](Text) { return cutControls(); }},
      {"wrong-pixels", [this](Text) { return std::to_string(wrongPixels()); }}};

  // A process learns the system's scaling when it starts: another one plays the scenario.
  void scaling(int percent) {
    const auto set = [](DWORD dots) {
      RegSetKeyValueA(HKEY_CURRENT_USER, "Control Panel\\Desktop", "LogPixels", REG_DWORD, &dots,
                      4);
    };
    const int wanted = USER_DEFAULT_SCREEN_DPI * percent / 100;
    if (std::getenv("RADIASHAFTS_SCALED") != nullptr) {
      return require(GetDeviceCaps(GetDC(nullptr), LOGPIXELSX) == wanted, "the scaling is another");
    }
    const std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
    set(wanted);
    _putenv("RADIASHAFTS_SCALED=1");
    isDone_ = 0 == std::system((std::string(_pgmptr) + " --gtest_filter=Scenario." + name).c_str());
    _putenv("RADIASHAFTS_SCALED=");
    set(USER_DEFAULT_SCREEN_DPI);
    require(isDone_, "it failed there");
  }

  // WIDTHxHEIGHT of the picture, what the host lacks and what it does.
  void startHost(const Words& words) {
    host_.reset();
    Host::Settings settings;
    values_ = {};
    values_.intensity = 0.0;  // no rays, where nothing is said
    standin::HostTraits& traits = settings.traits;
    const std::map<std::string, bool*> lacks{
        {"suites", &traits.suites},           {"handles", &traits.handleProcs},
        {"colors", &traits.colorServices},    {"display", &traits.displayPixels},
        {"descriptors", &traits.descriptors}, {"sampling", &traits.sampling}};
    const std::map<std::string, std::string*> texts{{"picks", &settings.pickedColor},
                                                    {"manner", &settings.manner},
                                                    {"apartment", &settings.apartment},
                                                    {"window", &settings.window}};
    for (const std::string& word : words) {
      const std::string name = word.substr(0, word.find('='));
      const std::string value = word.substr(std::min(name.size() + 1, word.size()));
      int width = 0, height = 0;
      if (std::sscanf(word.c_str(), "%dx%d", &width, &height) == 2) {
        settings.picture = placesPicture(width, height);
      } else if (name == "values") {
        Random random(std::stoul(value));
        values_ = randomValues(random);
      } else if (name == "without") {
        *lacks.at(value) = false;
      } else if (!name.empty()) {
        *texts.at(name) = value;
      }
    }
    settings.script = scriptOf(values_);
    host_ = std::make_unique<Host>(std::move(settings));
  }

  void startProgram(const Words& words) {
    std::string arguments;
    for (const std::string& word : words) arguments += word.empty() ? "" : " \"" + word + '"';
    host_.reset();
    host_ = std::make_unique<Host>(arguments);
  }

  // From here on, names of controls mean those of this dialog.
  void enter(Text caption) {
    const bool isOurs = caption == "dialog" || caption == "preview";
    HWND found = nullptr;
    const auto isOpen = [&] {
      found = findDialog(isOurs ? "Radiashafts  V1.22" : caption);
      return found != nullptr;
    };
    require(eventually(isOpen), caption + " does not open. " + Host::output());
    if (isOurs) {
      panel_ = found;
      preview_ = GetWindow(panel_, GW_OWNER);
      settledRect(preview_);
    }
    dialog_ = caption == "dialog" ? panel_ : caption == "preview" ? preview_ : found;
    settledRect(dialog_);
    bringToFront(dialog_);
  }

  HWND window(Text name) const {
    if (name == "host") return host_->window;
    if (name == "dialog") return panel_;
    if (name == "preview") return preview_;
    if (ids_.contains(name)) return GetDlgItem(dialog_, ids_.at(name));
    HWND found = name.starts_with('#') ? GetDlgItem(dialog_, std::stoi(name.substr(1))) : nullptr;
    forEachChild(dialog_, [&](HWND child, Text kind, Text text) {
      if (kind == "Button" && text == name) found = child;
    });
    require(found != nullptr, "there is no control " + name);
    return found;
  }

  std::string nameOf(HWND control) const {
    for (const auto& [name, id] : ids_) {
      if (GetDlgItem(panel_, id) == control) return name;
    }
    return textOf(control);
  }

  POINT placeOf(Text text) const {
    const std::string name = text.substr(0, text.find('@'));
    POINT point{};
    std::sscanf(text.c_str() + name.size(), "@%ld,%ld", &point.x, &point.y);
    const RECT rect =
        rectOf(name == "preview" ? GetDlgItem(preview_, ID_PREVIEW_FRAME) : window(name));
    return {point.x + (rect.left + rect.right) / 2, point.y + (rect.top + rect.bottom) / 2};
  }

  void drag(Text from, Text to, bool right) const {
    if (!from.starts_with("preview")) {
      bringToFront(dialog_);
      require(eventually([&] { return IsWindowEnabled(window(from.substr(0, from.find('@')))); }),
              "it is disabled");
    }
    test::drag(placeOf(from), placeOf(to), right);
  }

  HWND focused() const {
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(GetWindowThreadProcessId(dialog_, nullptr), &info);
    return info.hwndFocus;
  }

  // The key is lost where the window manager gives the keyboard to another window.
  void nextControl() const {
    bringToFront(dialog_);
    const HWND before = focused();
    pressKey("Tab");
    eventually([&] { return focused() != before || GetForegroundWindow() != dialog_; }, 30);
  }

  void focus(Text name) const {
    bringToFront(dialog_);
    for (int i = 0; focused() != window(name); ++i) {
      require(i < 100, "it never has the focus");
      nextControl();
    }
  }

  void write(Text text) const {
    const HWND edit = focused();
    const RECT rect = rectOf(edit);
    const POINT middle{(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
    // Once more where the window manager has given the keyboard to another window in between. Keys
    // that are still under way, such as Tab, come before the click.
    const auto isWritten = [&] {
      bringToFront(dialog_);
      test::drag(middle, middle);
      pressKey("End");
      pressKey("Shift+Home");
      typeText(text);
      return eventually([&] { return textOf(edit) == text; }, 10);
    };
    require(eventually(isWritten), "it became " + textOf(edit));
  }

  // Presses the key until the run has ended: another window may have the keyboard meanwhile.
  void leave(Text key, Text status) const {
    eventually([&] {
      pressKey(key);
      return eventually([&] { return host_->hasEnded(); }, 1);
    });
    expect("status", status);
  }

  void moveWindow(Text name, Text place) const {
    int x = 0, y = 0, width = 0, height = 0;
    const bool sized = std::sscanf(place.c_str(), "%d %d %d %d", &x, &y, &width, &height) == 4;
    require(sized, place + " is no place and size");
    SetWindowPos(window(name), nullptr, x, y, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
  }

  static bool isSwatch(HWND control) {
    const LONG type = GetWindowLongA(control, GWL_STYLE) & BS_TYPEMASK;
    return classOf(control) == "Button" && type == BS_OWNERDRAW;
  }

  void resizeAsUser(Text name, Text place) const {
    SendMessageA(window(name), WM_ENTERSIZEMOVE, 0, 0);
    moveWindow(name, place);
    settledRect(window(name));
    SendMessageA(window(name), WM_EXITSIZEMOVE, 0, 0);
  }

  // Another window with this caption takes the keyboard.
  static void visitWindow(Text caption) {
    const HWND other = CreateWindowA("STATIC", caption.c_str(), WS_POPUP | WS_VISIBLE, 0, 0, 50, 50,
                                     nullptr, nullptr, nullptr, nullptr);
    bringToFront(other);
    DestroyWindow(other);
  }

  // The value of a control. That of a swatch is the color in its middle.
  std::string shown(Text name) const {
    if (name.find('@') != std::string::npos || isSwatch(window(name))) {
      const POINT at = placeOf(name);
      const auto color = screenPicture({at.x, at.y, at.x + 1, at.y + 1}).bytes;
      return joined({color[0], color[1], color[2]}, ",");
    }
    const std::string kind = classOf(window(name));
    if (kind == TRACKBAR_CLASSA)
      return std::to_string(SendMessageA(window(name), TBM_GETPOS, 0, 0));
    if (kind != "Button") return textOf(window(name));
    return SendMessageA(window(name), BM_GETCHECK, 0, 0) == BST_CHECKED ? "on" : "off";
  }

  static std::string placeOfWindow(HWND window) {
    const RECT rect = settledRect(window);
    return joined({rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top}, " ");
  }

  // The texts of a box, of its buttons, and whether it holds the parameter dialog.
  std::string box(Text caption) const {
    const HWND box = findDialog(caption);
    if (box == nullptr) return "closed";
    std::string texts, buttons;
    forEachChild(box, [&](HWND, Text kind, Text text) {
      if (kind == "Static") texts += std::regex_replace(text, std::regex("\n"), "/");
      if (kind == "Button") buttons += " [" + text + "]";
    });
    const bool holds = GetWindow(box, GW_OWNER) == panel_ && IsWindowEnabled(panel_) == FALSE;
    return texts + buttons + (holds ? "" : " by itself");
  }

  std::string tabOrder() const {
    focus("OK");
    std::string order;
    do {
      order += nameOf(focused()) + '\n';
      nextControl();
    } while (focused() != window("OK") && order.size() < 2000);
    return order;
  }

  // Controls that stand beyond the dialog's edge or are too small for their text.
  std::string cutControls() const {
    std::string cut;
    RECT client{};
    GetClientRect(panel_, &client);
    MapWindowPoints(panel_, nullptr, reinterpret_cast<POINT*>(&client), 2);
    forEachChild(panel_, [&](HWND child, Text kind, Text text) {
      if (IsWindowVisible(child) == FALSE) return;
      const HDC context = GetDC(child);
      SelectObject(context, reinterpret_cast<HGDIOBJ>(SendMessageA(child, WM_GETFONT, 0, 0)));
      SIZE needed{};
      GetTextExtentPoint32A(context, text.c_str(), static_cast<int>(text.size()), &needed);
      ReleaseDC(child, context);
      const LONG style = GetWindowLongA(child, GWL_STYLE) & BS_TYPEMASK;
      const bool isBox = kind == "Button" && style == BS_AUTOCHECKBOX;
      const int frame = kind != "Static" && !text.empty() && !isBox ? 2 : 0;
      needed.cx += frame * GetSystemMetrics(SM_CXEDGE) + isBox * GetSystemMetrics(SM_CXMENUCHECK);
      needed.cy += frame * GetSystemMetrics(SM_CYEDGE);
      const RECT rect = rectOf(child);
      RECT both{};
      UnionRect(&both, &client, &rect);
      const bool fits = rect.right - rect.left >= needed.cx && rect.bottom - rect.top >= needed.cy;
      if (!fits || EqualRect(&both, &client) == FALSE) cut += kind + ' ' + text + "; ";
    });
    return cut;
  }

  // How many samples in the middle of the preview are not as the judge renders the picture.
  long long wrongPixels() const {
    const standin::Picture& input = host_->settings.picture;
    const standin::Picture judged = judge::render(input, nullptr, values_);
    const RECT frame = rectOf(GetDlgItem(preview_, ID_PREVIEW_FRAME));
    const LONG left = frame.left + (frame.right - frame.left - input.width) / 2;
    const LONG top = frame.top + (frame.bottom - frame.top - input.height) / 2;
    const auto seen = screenPicture({left, top, left + input.width, top + input.height});
    return std::inner_product(judged.bytes.begin(), judged.bytes.end(), seen.bytes.begin(), 0LL,
                              std::plus(), [](int a, int b) { return std::abs(a - b) > 1; });
  }

  void expect(Text thing, Text text) const {
    const bool isGolden = text.starts_with("golden:");
    const std::string file = isGolden ? text.substr(7) : "";
    const std::string wanted = isGolden ? contentsOf(RADIASHAFTS_GOLDEN "/" + file) : text;
    const auto sight = sights_.find(thing.substr(0, thing.find(' ')));
    std::string found;
    const bool held = eventually([&] {
      found = sight == sights_.end()
                  ? shown(thing)
                  : sight->second(thing.substr(std::min(thing.size(), thing.find(' ') + 1)));
      return difference(found, wanted).empty();
    });
    if (!held && isGolden) std::ofstream(RADIASHAFTS_SCREENSHOTS "/" + file) << found;
    require(held, thing + " is " + difference(found, wanted));
  }

  const std::map<std::string, int> ids_ = controlIds();
  judge::Values values_;
  std::unique_ptr<Host> host_;
  bool isDone_ = false;
  HWND panel_ = nullptr;
  HWND preview_ = nullptr;
  HWND dialog_ = nullptr;
};

class Scenario : public testing::Test {
 public:
  explicit Scenario(std::filesystem::path file) : file_(std::move(file)) {}

  void TestBody() override {
    std::filesystem::create_directories(RADIASHAFTS_SCREENSHOTS);
    std::ifstream stream(file_);
    std::string line;
    int number = 1;
    Player player;
    try {
      for (; !player.isDone() && std::getline(stream, line); ++number) {
        if (!line.empty() && line[0] != '#') player.perform(line);
      }
    } catch (const std::exception& error) {
      ADD_FAILURE_AT(file_.string().c_str(), number) << line << "\n" << error.what();
      const RECT all{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
      standin::writePictureFile(RADIASHAFTS_SCREENSHOTS "/" + file_.stem().string() + ".png",
                                {screenPicture(all), nullptr, ".png", {}}, {},
                                [] { return false; });
    }
  }

 private:
  std::filesystem::path file_;
};

const bool registered = [] {
  for (const auto& entry : std::filesystem::directory_iterator(RADIASHAFTS_SCENARIOS)) {
    if (entry.path().extension() != ".txt") continue;
    testing::RegisterTest("Scenario", entry.path().stem().string().c_str(), nullptr, nullptr,
                          entry.path().string().c_str(), 1,
                          [path = entry.path()] { return new Scenario(path); });
  }
  return true;
}();

}  // namespace
}  // namespace radiashafts::test
