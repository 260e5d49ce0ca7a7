#include "obs/plugin/pane_texture.h"

#include <algorithm>

namespace chalkpane::obs {
namespace {

// "DrawLinear" takes the coverage out, makes linear light of the colour, and covers with it again.
constexpr const char* effectText = R"(
uniform float4x4 ViewProj;
uniform texture2d image;
uniform float multiplier;

sampler_state smooth {
	Filter   = Linear;
	AddressU = Clamp;
	AddressV = Clamp;
};

struct Vertex {
	float4 pos : POSITION;
	float2 uv  : TEXCOORD0;
};

Vertex VSInk(Vertex vertex)
{
	Vertex moved;
	moved.pos = mul(float4(vertex.pos.xyz, 1.0), ViewProj);
	moved.uv  = vertex.uv;
	return moved;
}

float4 PSInk(Vertex vertex) : TARGET
{
	return image.Sample(smooth, vertex.uv);
}

float Linear(float encoded)
{
	return (encoded <= 0.04045) ? (encoded / 12.92) : pow((encoded + 0.055) / 1.055, 2.4);
}

float4 PSInkLinear(Vertex vertex) : TARGET
{
	float4 ink = image.Sample(smooth, vertex.uv);
	float3 straight = saturate(ink.rgb / max(ink.a, 0.001));
	float3 light = float3(Linear(straight.r), Linear(straight.g), Linear(straight.b));
	return float4(light * ink.a * multiplier, ink.a);
}

technique Draw
{
	pass
	{
		vertex_shader = VSInk(vertex);
		pixel_shader  = PSInk(vertex);
	}
}

technique DrawLinear
{
	pass
	{
		vertex_shader = VSInk(vertex);
		pixel_shader  = PSInkLinear(vertex);
	}
}
)";

// The canvas's rows run from the bottom.
void DrawQuad(const PanePlace& place) {
    const PanePlace::Part part = place.SeenPart();
    const auto corner = [](double u, double fromTop, std::int32_t x, std::int32_t y) {
        gs_texcoord(static_cast<float>(u), static_cast<float>(1 - fromTop), 0);
        gs_vertex2f(static_cast<float>(x), static_cast<float>(y));
    };
    gs_render_start(false);
    corner(part.left, part.top, 0, 0);
    corner(part.right, part.top, place.width, 0);
    corner(part.left, part.bottom, 0, place.height);
    corner(part.right, part.bottom, place.width, place.height);
    gs_render_stop(GS_TRISTRIP);
}

}  // namespace

PaneTexture::~PaneTexture() {
    if (m_canvas == nullptr && m_effect == nullptr) return;
    obs_enter_graphics();
    gs_texture_destroy(m_canvas);
    for (gs_texture_t* square : m_squares) gs_texture_destroy(square);
    gs_effect_destroy(m_effect);
    obs_leave_graphics();
}

bool PaneTexture::Make(InkPane& pane) {
    if (m_canvas != nullptr) return true;
    if (m_hasFailed) return false;
    char* wrong = nullptr;
    m_effect = gs_effect_create(effectText, "chalkpane.effect", &wrong);
    m_canvas = m_effect == nullptr ? nullptr : gs_texture_create(canvasSize, canvasSize, GS_RGBA, 1, nullptr, 0);
    if (m_canvas == nullptr) {
        m_hasFailed = true;
        blog(LOG_ERROR, "[chalkpane] the graphics card takes no strokes, so none are seen: %s",
             wrong != nullptr ? wrong : "no texture of 1024 x 1024 pixels can be made");
    }
    bfree(wrong);
    pane.ShowAll();
    return m_canvas != nullptr;
}

void PaneTexture::Upload(InkPane& pane) {
    obs_enter_graphics();
    if (gs_get_context() != nullptr && Make(pane))
        pane.TakeChange([&](const Rect& changed, std::span<const std::byte> canvas) {
            constexpr std::uint32_t rowBytes = canvasSize * 4;
            for (const UploadSquare& square : PlanUpload(changed)) {
                const auto index = static_cast<std::size_t>(std::ranges::find(uploadSides, square.side) - uploadSides);
                const auto side = static_cast<std::uint32_t>(square.side);
                gs_texture_t*& texture = m_squares[index];
                if (texture == nullptr) texture = gs_texture_create(side, side, GS_RGBA, 1, nullptr, GS_DYNAMIC);
                if (texture == nullptr) continue;
                const std::byte* pixels =
                    &canvas[static_cast<std::size_t>(square.y) * rowBytes + static_cast<std::size_t>(square.x) * 4];
                gs_texture_set_image(texture, reinterpret_cast<const std::uint8_t*>(pixels), rowBytes, false);
                gs_copy_texture_region(m_canvas, static_cast<std::uint32_t>(square.x),
                                       static_cast<std::uint32_t>(square.y), texture, 0, 0, side, side);
            }
        });
    obs_leave_graphics();
}

void PaneTexture::Draw(const PanePlace& place) const {
    if (m_canvas == nullptr) return;
    const gs_color_space space = gs_get_color_space();
    const bool isLinear = space == GS_CS_709_EXTENDED || space == GS_CS_709_SCRGB;
    const float white = space == GS_CS_709_SCRGB ? obs_get_video_sdr_white_level() / 80.0F : 1.0F;
    const bool before = gs_framebuffer_srgb_enabled();
    gs_enable_framebuffer_srgb(false);
    gs_blend_state_push();
    gs_enable_blending(true);
    gs_blend_function(GS_BLEND_ONE, GS_BLEND_INVSRCALPHA);
    gs_effect_set_texture(gs_effect_get_param_by_name(m_effect, "image"), m_canvas);
    gs_effect_set_float(gs_effect_get_param_by_name(m_effect, "multiplier"), white);
    while (gs_effect_loop(m_effect, isLinear ? "DrawLinear" : "Draw")) DrawQuad(place);
    gs_blend_state_pop();
    gs_enable_framebuffer_srgb(before);
}

}  // namespace chalkpane::obs
