#version 440

layout(location = 0) in vec2 place;

layout(location = 0) out vec4 colour;

layout(std140, binding = 0) uniform Values {
    mat4 matrix;
    vec2 spread;
    float opacity;
};

layout(binding = 1) uniform sampler2D lumaPlane;
layout(binding = 2) uniform sampler2D cbPlane;
layout(binding = 3) uniform sampler2D crPlane;

// A picture that is shown smaller has several samples in a pixel: their mean, or fine lines and letters would break up.
float luma()
{
    if (spread.x <= 0.0)
        return texture(lumaPlane, place).r;
    vec2 other = vec2(spread.x, -spread.y);
    return 0.25 * (texture(lumaPlane, place + spread).r + texture(lumaPlane, place - spread).r
        + texture(lumaPlane, place + other).r + texture(lumaPlane, place - other).r);
}

// BT.709, limited range. Chroma lies in the middle of its luma samples, so it has the same places.
void main()
{
    float y = 255.0 / 219.0 * (luma() - 16.0 / 255.0);
    float cb = 255.0 / 224.0 * (texture(cbPlane, place).r - 128.0 / 255.0);
    float cr = 255.0 / 224.0 * (texture(crPlane, place).r - 128.0 / 255.0);
    vec3 rgb = vec3(y + 1.5748 * cr, y - 0.1873243 * cb - 0.4681243 * cr, y + 1.8556 * cb);
    colour = vec4(clamp(rgb, 0.0, 1.0), 1.0) * opacity;
}
