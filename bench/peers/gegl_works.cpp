#include <gegl.h>

#include <cstring>
#include <memory>
#include <vector>

#include "bench/peers/filter_work.h"

namespace chalkpane::peers {
namespace {

struct Unref {
    void operator()(GeglBuffer* buffer) const { g_object_unref(buffer); }
    void operator()(GeglNode* node) const { g_object_unref(node); }
    void operator()(GeglColor* colour) const { g_object_unref(colour); }
};

using Bytes = std::vector<std::uint8_t>;
constexpr GeglRectangle whole{0, 0, pictureSize, pictureSize};

// Bytes of a picture of ours; to the operations blue is red and red blue.
const Babl* ByteFormat() { return babl_format("R'G'B'A u8"); }

// A picture and an operation behind it, in the format that the operation works in: what it takes to get there from
// bytes, and back, is not in the time.
class Graph {
public:
    // settings: ended by a null
    template <typename... Settings>
    explicit Graph(const Image& picture, const char* operation, Settings... settings)
        : m_format(babl_format("RGBA float")), m_source(gegl_buffer_new(&whole, m_format)), m_graph(gegl_node_new()) {
        gegl_buffer_set(m_source.get(), &whole, 0, ByteFormat(), FirstByte(picture), GEGL_AUTO_ROWSTRIDE);
        GeglNode* const input =
            gegl_node_new_child(m_graph.get(), "operation", "gegl:buffer-source", "buffer", m_source.get(), nullptr);
        m_operation = gegl_node_new_child(m_graph.get(), "operation", operation, settings...);
        gegl_node_set(m_operation, "cache-policy", GEGL_CACHE_POLICY_NEVER, nullptr);
        gegl_node_link(input, m_operation);
    }

    void Compute() {
        gegl_node_blit(m_operation, 1.0, &whole, m_format, m_floats.data(), GEGL_AUTO_ROWSTRIDE, GEGL_BLIT_DEFAULT);
    }
    [[nodiscard]] Bytes Made() const {
        Bytes bytes(m_floats.size());
        babl_process(babl_fish(m_format, ByteFormat()), m_floats.data(), bytes.data(), pictureSize * pictureSize);
        return bytes;
    }

private:
    const Babl* m_format;
    std::vector<float> m_floats = std::vector<float>(std::size_t{4} * pictureSize * pictureSize);
    std::unique_ptr<GeglBuffer, Unref> m_source;
    std::unique_ptr<GeglNode, Unref> m_graph;
    GeglNode* m_operation = nullptr;
};

// On waves, where neighbouring cells and tones are close.
struct Pair {
    OurFilter ours;
    Graph theirs;

    template <typename... Settings>
    Pair(std::string_view label, const OurFilter::Settings& own, const char* operation, Settings... settings)
        : ours(label, own, WavePicture(Depth::Eight)), theirs(ours.picture, operation, settings...) {}

    [[nodiscard]] double Apart() const {
        const Bytes made = theirs.Made();
        return ColourDifference<PixelFormat8>(made.data(),
                                              reinterpret_cast<const std::uint8_t*>(FirstByte(*ours.result)));
    }
};

PeerWork WorkOf(const char* name, double mostApart, const std::shared_ptr<Pair>& pair) {
    PeerWork work;
    work.name = name;
    work.peer = "GEGL";
    work.unit = "px";
    work.units = double{pictureSize} * pictureSize;
    work.theirs = [pair] { pair->theirs.Compute(); };
    work.ours = [pair] { pair->ours.Apply(); };
    work.apart = [pair] { return pair->Apart(); };
    work.mostApart = mostApart;
    return work;
}

// The picture times its shade. Theirs sees heights in linear light, so that bright bumps are higher.
PeerWork EmbossWork() {
    const OurFilter::Settings settings{
        {"Light Direction", 90}, {"Light Elevation", 30}, {"Bump Height", 4}, {"Mix With Image", 1}};
    const auto pair = std::make_shared<Pair>("Emboss", settings, "gegl:emboss", "type", 1, "azimuth", 90.0, "elevation",
                                             30.0, "depth", 1, nullptr);
    return WorkOf("emboss", 28.0, pair);
}

// Theirs looks at a round window and weighs the tones by a power of their counts; at its usual one little but the
// fullest stays.
PeerWork OilWork() {
    const OurFilter::Settings settings{{"Radius", 5}, {"Levels", 100}, {"Use Intensity", 1}};
    const auto pair = std::make_shared<Pair>("Oil", settings, "gegl:oilify", "mask-radius", 5, "exponent", 8,
                                             "intensities", 100, "use-inten", TRUE, nullptr);
    return WorkOf("oil r 5", 16.0, pair);
}

// Hexagons moved about. Between them theirs has joints that take a third of the picture at least; so their colour is
// the middle of the waves.
PeerWork StainedGlassWork(double spacing, const char* name) {
    const std::unique_ptr<GeglColor, Unref> grey(gegl_color_new("gray"));
    const OurFilter::Settings settings{{"Spacing", spacing}, {"Randomness", 0.5}, {"Edges", 0.1}};
    const auto pair = std::make_shared<Pair>("Stained Glass", settings, "gegl:mosaic", "tile-size", spacing,
                                             "tile-neatness", 0.5, "joints-color", grey.get(), "color-variation", 0.0,
                                             "tile-height", 1.0, "tile-spacing", 0.1, "antialiasing", FALSE, nullptr);
    return WorkOf(name, 50.0, pair);
}

}  // namespace

std::vector<PeerWork> GeglWorks() {
    // Where its packages hold operations for several processors it warns of each that it has found twice.
    const auto keepQuiet = [](const char*, GLogLevelFlags, const char*, void*) {};
    g_log_set_handler("GLib-GObject", G_LOG_LEVEL_WARNING, keepQuiet, nullptr);
    gegl_init(nullptr, nullptr);
    // Some of its operations are there only for programs of that licence.
    g_object_set(gegl_config(), "application-license", "GPL3", "threads", 1, "use-opencl", FALSE, nullptr);
    std::vector<PeerWork> works;
    works.push_back(EmbossWork());
    works.push_back(OilWork());
    works.push_back(StainedGlassWork(5.0, "stained glass 5"));
    works.push_back(StainedGlassWork(10.0, "stained glass 10"));
    return works;
}

}  // namespace chalkpane::peers
