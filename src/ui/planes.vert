#version 440

layout(location = 0) in vec4 corner;
layout(location = 1) in vec2 cornerOfPicture;

layout(location = 0) out vec2 place;

layout(std140, binding = 0) uniform Values {
    mat4 matrix;
    vec2 spread;
    float opacity;
};

out gl_PerVertex { vec4 gl_Position; };

void main()
{
    place = cornerOfPicture;
    gl_Position = matrix * corner;
}
