#include "RecordCore/Rendering/Fonts.h"

#include "RecordCore/Rendering/TextLayout.h"

#include <fontconfig/fontconfig.h>
#include <pango/pangocairo.h>
#include <pango/pangofc-font.h>
#include <pango/pangofc-fontmap.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <mutex>
#include <optional>

namespace RecordCore {

namespace {

constexpr const char* family = "Plus Jakarta Sans";

/// Longer texts are cut: nothing the recorder draws comes near, and laying out takes time.
constexpr std::size_t mostBytes = 4000;

bool holdsFonts(const std::filesystem::path& folder) {
    std::error_code error;
    return std::filesystem::is_directory(folder, error);
}

std::filesystem::path findFolder() {
    std::error_code error;
    const std::filesystem::path executable = std::filesystem::read_symlink("/proc/self/exe", error);
    std::filesystem::path up = executable.parent_path();
    if (holdsFonts(up / "../share/ombrel-record/fonts")) return up / "../share/ombrel-record/fonts";
    for (int level = 0; level < 8 && up.has_relative_path(); ++level, up = up.parent_path())
        if (holdsFonts(up / "OmbrelRecord/Resources/fonts")) return up / "OmbrelRecord/Resources/fonts";
    for (const char* data : {"/usr/local/share", "/usr/share"})
        if (holdsFonts(std::filesystem::path(data) / "ombrel-record/fonts"))
            return std::filesystem::path(data) / "ombrel-record/fonts";
    return {};
}

/// The font map of the process with its configuration, and the lock over all use of it: Pango's maps are
/// not made for several threads.
struct Engine {
    std::recursive_mutex mutex;
    std::optional<std::filesystem::path> folder;
    bool onlyCarried = false;
    PangoFontMap* map = nullptr;
    PangoContext* context = nullptr;

    void drop() {
        g_clear_object(&context);
        g_clear_object(&map);
    }

    const std::filesystem::path& fonts() {
        if (!folder) folder = findFolder();
        return *folder;
    }

    void open() {
        if (context) return;
        FcConfig* config = onlyCarried ? FcConfigCreate() : FcInitLoadConfigAndFonts();
        if (onlyCarried) {
            constexpr const char* caches =
                "<fontconfig><cachedir prefix=\"xdg\">fontconfig</cachedir></fontconfig>";
            FcConfigParseAndLoadFromMemory(config, reinterpret_cast<const FcChar8*>(caches), FcFalse);
        }
        if (!fonts().empty())
            FcConfigAppFontAddDir(config, reinterpret_cast<const FcChar8*>(fonts().c_str()));
        map = pango_cairo_font_map_new_for_font_type(CAIRO_FONT_TYPE_FT);
        pango_fc_font_map_set_config(PANGO_FC_FONT_MAP(map), config);
        FcConfigDestroy(config); // the map holds its own reference
        pango_cairo_font_map_set_resolution(PANGO_CAIRO_FONT_MAP(map), 72);
        context = pango_font_map_create_context(map);
        // Shapes as designed, at any size: no hinting, no rounding of positions.
        cairo_font_options_t* options = cairo_font_options_create();
        cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
        cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
        cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
        pango_cairo_context_set_font_options(context, options);
        cairo_font_options_destroy(options);
        pango_context_set_round_glyph_positions(context, FALSE);
        pango_context_set_language(context, pango_language_from_string("en"));
    }
};

Engine& engine() {
    static Engine& instance = *new Engine; // lives to the end: texts may be drawn by any thread until then
    return instance;
}

/// Valid UTF-8 of a length that can be laid out.
std::string usable(std::string_view text) {
    std::string part(text.substr(0, mostBytes));
    std::replace(part.begin(), part.end(), '\0', ' ');
    char* valid = g_utf8_make_valid(part.data(), static_cast<gssize>(part.size()));
    std::string result(valid);
    g_free(valid);
    return result;
}

bool hasColors(PangoFont* font) {
    if (!PANGO_IS_FC_FONT(font)) return false;
    FcBool color = FcFalse;
    FcPattern* pattern = pango_fc_font_get_pattern(PANGO_FC_FONT(font));
    return pattern && FcPatternGetBool(pattern, FC_COLOR, 0, &color) == FcResultMatch && color;
}

} // namespace

void Fonts::setFolder(const std::filesystem::path& folder) {
    const std::scoped_lock lock(engine().mutex);
    engine().folder = folder;
    engine().drop();
}

std::filesystem::path Fonts::folder() {
    const std::scoped_lock lock(engine().mutex);
    return engine().fonts();
}

void Fonts::useOnlyCarriedFonts(bool only) {
    const std::scoped_lock lock(engine().mutex);
    if (engine().onlyCarried == only) return;
    engine().onlyCarried = only;
    engine().drop();
}

struct TextLayout::State {
    std::unique_lock<std::recursive_mutex> lock{engine().mutex};
    PangoLayout* layout = nullptr;
    struct Stretch {
        int end; ///< byte of the whole text
        Ink ink;
    };
    std::vector<Stretch> stretches;
    double wrap = 0;

    ~State() { g_clear_object(&layout); }

    PangoRectangle extents() const {
        PangoRectangle logical;
        pango_layout_get_extents(layout, nullptr, &logical);
        return logical;
    }
    const Ink& inkAt(int offset) const {
        for (const Stretch& stretch : stretches)
            if (offset < stretch.end) return stretch.ink;
        return stretches.back().ink;
    }
};

TextLayout::TextLayout(const std::vector<TextRun>& runs, const TextStyle& style) :
    state(std::make_unique<State>()) {
    engine().open();
    state->layout = pango_layout_new(engine().context);
    PangoLayout* layout = state->layout;
    PangoAttrList* attributes = pango_attr_list_new();
    std::string text;
    for (const TextRun& run : runs) {
        const auto start = static_cast<guint>(text.size());
        if (text.size() < mostBytes) text += usable(run.text);
        const auto end = static_cast<guint>(text.size());
        state->stretches.push_back({static_cast<int>(end), run.ink});
        // The colour itself is set while drawing; this keeps the runs apart.
        PangoAttribute* color =
            pango_attr_foreground_new(static_cast<guint16>(state->stretches.size() & 0xffff), 0, 0);
        color->start_index = start;
        color->end_index = end;
        pango_attr_list_insert(attributes, color);
    }
    if (state->stretches.empty()) state->stretches.push_back({0, {}});

    const double size = std::clamp(std::isfinite(style.size) ? style.size : 16.0, 0.5, 8192.0);
    if (style.kerning != 0)
        pango_attr_list_insert(attributes, pango_attr_letter_spacing_new(
                                               static_cast<int>(std::lround(style.kerning * PANGO_SCALE))));
    if (style.tabularFigures) pango_attr_list_insert(attributes, pango_attr_font_features_new("tnum=1"));

    PangoFontDescription* font = pango_font_description_new();
    pango_font_description_set_family(font, family);
    pango_font_description_set_weight(font, static_cast<PangoWeight>(style.weight));
    pango_font_description_set_absolute_size(font, size * PANGO_SCALE);
    pango_layout_set_font_description(layout, font);
    pango_font_description_free(font);

    pango_layout_set_text(layout, text.c_str(), static_cast<int>(text.size()));
    pango_layout_set_attributes(layout, attributes);
    pango_attr_list_unref(attributes);
    if (style.centered) pango_layout_set_alignment(layout, PANGO_ALIGN_CENTER);
    if (style.width > 0) {
        state->wrap = std::clamp(style.width, 1.0, 32768.0);
        pango_layout_set_width(layout, static_cast<int>(state->wrap * PANGO_SCALE));
        pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    }
    if (style.mostLines > 0) {
        pango_layout_set_height(layout, -style.mostLines);
        pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
    }
}

TextLayout::~TextLayout() = default;

double TextLayout::width() const {
    return static_cast<double>(state->extents().width) / PANGO_SCALE;
}
double TextLayout::height() const {
    return static_cast<double>(state->extents().height) / PANGO_SCALE;
}
double TextLayout::left() const {
    return static_cast<double>(state->extents().x) / PANGO_SCALE;
}
int TextLayout::lines() const {
    return pango_layout_get_line_count(state->layout);
}
double TextLayout::baseline() const {
    return static_cast<double>(pango_layout_get_baseline(state->layout)) / PANGO_SCALE;
}

void TextLayout::draw(cairo_t* cairo, double x, double y, const Ink* shape) const {
    PangoLayoutIter* iterator = pango_layout_get_iter(state->layout);
    do {
        PangoLayoutRun* run = pango_layout_iter_get_run_readonly(iterator);
        if (!run) continue;
        PangoRectangle logical;
        pango_layout_iter_get_run_extents(iterator, nullptr, &logical);
        const double baselineY = static_cast<double>(pango_layout_iter_get_baseline(iterator)) / PANGO_SCALE;
        cairo_move_to(cairo, x + static_cast<double>(logical.x) / PANGO_SCALE, y + baselineY);
        setInk(cairo, shape ? *shape : state->inkAt(run->item->offset));
        // Outlines fall exactly where the layout puts them; only coloured glyphs are pictures.
        if (hasColors(run->item->analysis.font)) {
            pango_cairo_show_glyph_string(cairo, run->item->analysis.font, run->glyphs);
        } else {
            pango_cairo_glyph_string_path(cairo, run->item->analysis.font, run->glyphs);
            cairo_fill(cairo);
        }
    } while (pango_layout_iter_next_run(iterator));
    pango_layout_iter_free(iterator);
}

} // namespace RecordCore
