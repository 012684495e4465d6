#include "interface/win32/dialog_font.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "interface/model/window_layout.h"
#include "interface/win32/dialog_controls.h"

namespace radiashafts {
namespace {

// RAII: measures texts in one font.
class Measure {
 public:
  Measure(HWND dialog, HFONT font)
      : dialog_(dialog), context_(GetDC(dialog)), previous_(SelectObject(context_, font)) {}
  ~Measure() {
    SelectObject(context_, previous_);
    ReleaseDC(dialog_, context_);
  }
  Measure(const Measure&) = delete;
  Measure& operator=(const Measure&) = delete;

  std::wstring face() const {
    wchar_t name[LF_FACESIZE] = L"";
    GetTextFaceW(context_, LF_FACESIZE, name);
    return name;
  }
  int lineHeight() const {
    TEXTMETRICW metrics{};
    GetTextMetricsW(context_, &metrics);
    return metrics.tmHeight;
  }
  // Of one line.
  Extent line(const std::wstring& text) const {
    SIZE size{};
    GetTextExtentPoint32W(context_, text.c_str(), static_cast<int>(text.size()), &size);
    return {size.cx, size.cy};
  }
  // Of a text in lines of at most this width, which a longer word exceeds.
  Extent paragraph(const std::wstring& text, int width) const {
    RECT rect{0, 0, width, 0};
    DrawTextW(context_, text.c_str(), -1, &rect, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
    return {rect.right, rect.bottom};
  }

 private:
  HWND dialog_;
  HDC context_;
  HGDIOBJ previous_;
};

enum class TextKind { label, paragraph, groupBox, checkBox, button, edit };

// A visible control with a text, which may be empty yet.
struct TextControl {
  HWND window;
  TextKind kind;
  RECT rect;  // in the dialog
  std::wstring text;

  int width() const { return rect.right - rect.left; }
  int height() const { return rect.bottom - rect.top; }
};

std::vector<TextControl> textControls(HWND dialog, int templateLineHeight) {
  std::vector<TextControl> controls;
  for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr;
       child = GetWindow(child, GW_HWNDNEXT)) {
    TextControl control{child, TextKind::label, rectInDialog(dialog, child), {}};
    const LONG style = GetWindowLongA(child, GWL_STYLE);
    if ((style & WS_VISIBLE) == 0) continue;
    if (isClass(child, "Button")) {
      const LONG type = style & BS_TYPEMASK;
      if (type == BS_OWNERDRAW) continue;
      control.kind = type == BS_GROUPBOX       ? TextKind::groupBox
                     : type == BS_AUTOCHECKBOX ? TextKind::checkBox
                                               : TextKind::button;
    } else if (isClass(child, "Edit")) {
      control.kind = TextKind::edit;
    } else if (!isClass(child, "Static") || (style & SS_TYPEMASK) > SS_RIGHT) {
      continue;
    } else if (control.height() >= 2 * templateLineHeight) {
      control.kind = TextKind::paragraph;
    }
    control.text.resize(static_cast<std::size_t>(GetWindowTextLengthW(child)) + 1);
    control.text.resize(static_cast<std::size_t>(
        GetWindowTextW(child, control.text.data(), static_cast<int>(control.text.size()))));
    controls.push_back(std::move(control));
  }
  return controls;
}

// A label has free space above and below: it may become higher by a quarter.
bool fits(const TextControl& control, const Measure& measure) {
  constexpr int focusFrame = 1;
  const int edge = GetSystemMetrics(SM_CXEDGE);
  const Extent line = measure.line(control.text);
  const auto isWithin = [&](int left, int width) {
    return left + line.width <= width && measure.lineHeight() <= control.height();
  };
  switch (control.kind) {
    case TextKind::label:
      return line.width <= control.width() && 4 * measure.lineHeight() <= 5 * control.height();
    case TextKind::paragraph: {
      const Extent size = measure.paragraph(control.text, control.width());
      return size.width <= control.width() && size.height <= control.height();
    }
    case TextKind::groupBox:
    case TextKind::checkBox:
      return isWithin(GetSystemMetrics(SM_CXMENUCHECK) + edge, control.width());
    case TextKind::button:
      return isWithin(2 * (edge + focusFrame), control.width());
    case TextKind::edit:
      return measure.lineHeight() <= control.height() - 2 * edge;
  }
  return false;
}

HFONT templateFont(HWND dialog) {
  return reinterpret_cast<HFONT>(SendMessageA(dialog, WM_GETFONT, 0, 0));
}

}  // namespace

void DialogFont::apply(HWND dialog) {
  release();
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof metrics;
  LOGFONTW old{};
  if (SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0) == FALSE ||
      GetObjectW(templateFont(dialog), sizeof old, &old) == 0) {
    return;
  }
  const auto make = [&](int height) {
    LOGFONTW wanted = metrics.lfMessageFont;
    wanted.lfHeight = -height;
    wanted.lfWidth = 0;
    return CreateFontIndirectW(&wanted);
  };
  const Measure before(dialog, templateFont(dialog));
  const std::vector<TextControl> controls = textControls(dialog, before.lineHeight());
  bool isOther = true;
  const auto height = fittingHeight(std::abs(static_cast<int>(old.lfHeight)), [&](int tried) {
    const HFONT font = make(tried);
    bool allFit = false;
    {
      const Measure measure(dialog, font);
      isOther = measure.face() != before.face();
      allFit =
          std::all_of(controls.begin(), controls.end(),
                      [&measure](const TextControl& control) { return fits(control, measure); });
    }
    DeleteObject(font);
    return allFit || !isOther;
  });
  if (height && isOther) use(dialog, make(*height));
}

void DialogFont::scale(HWND dialog, int from, int to) {
  LOGFONTW wanted{};
  if (GetObjectW(font_ != nullptr ? font_ : templateFont(dialog), sizeof wanted, &wanted) == 0) {
    return;
  }
  wanted.lfHeight = MulDiv(wanted.lfHeight, to, std::max(from, 1));
  wanted.lfWidth = 0;
  use(dialog, CreateFontIndirectW(&wanted));
}

// Labels become as high as a line of the font.
void DialogFont::use(HWND dialog, HFONT font) {
  if (font == nullptr) return;
  const int line = Measure(dialog, font).lineHeight();
  for (const TextControl& control : textControls(dialog, line)) {
    const int missing = line - control.height();
    if (control.kind != TextKind::label || missing <= 0) continue;
    SetWindowPos(control.window, nullptr, control.rect.left, control.rect.top - (missing + 1) / 2,
                 control.width(), line, SWP_NOZORDER | SWP_NOACTIVATE);
  }
  for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr;
       child = GetWindow(child, GW_HWNDNEXT)) {
    SendMessageA(child, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
  }
  release();
  font_ = font;
}

void DialogFont::release() {
  if (font_ != nullptr) DeleteObject(font_);
  font_ = nullptr;
}

}  // namespace radiashafts
