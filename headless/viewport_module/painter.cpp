#include "headless/viewport_module/painter.h"

#include <array>
#include <cstddef>

namespace headless {
namespace {

// `toClip` is read by columns here and written by rows there, so it stands on the vector's left.
constexpr char kVertexShader[] = R"(#version 330 core
layout(location = 0) in vec3 place;
layout(location = 1) in vec3 normal;
layout(location = 2) in vec3 colour;
uniform mat4 toClip;
out vec3 worldNormal;
out vec3 surface;
void main() {
    gl_Position = toClip * vec4(place, 1.0);
    worldNormal = normal;
    surface = colour;
}
)";

// The lamp shines along the view. What it does not reach is not black.
constexpr char kFragmentShader[] = R"(#version 330 core
in vec3 worldNormal;
in vec3 surface;
uniform vec3 ahead;
uniform bool isLit;
out vec4 pixel;
void main() {
    float size = length(worldNormal);
    float facing = size > 0.0 ? abs(dot(worldNormal, ahead)) / size : 1.0;
    float light = isLit ? 0.22 + 0.78 * facing : 1.0;
    pixel = vec4(surface * light, 1.0);
}
)";

enum Attribute : GLuint { kPlace, kNormal, kColour };

// Pushes faces back a little, so that lines on them show.
constexpr float kFaceSlope = 1;
constexpr float kFaceUnits = 1;

GLuint Compile(GLenum kind, const char* source) {
    const GLuint shader = glCreateShader(kind);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    return shader;
}

void DescribeFloats(Attribute attribute, std::size_t offset) {
    glEnableVertexAttribArray(attribute);
    glVertexAttribPointer(attribute, 3, GL_FLOAT, GL_FALSE, sizeof(DrawVertex),
                          reinterpret_cast<const void*>(offset));
}

void Enable(GLenum capability, bool isOn) {
    isOn ? glEnable(capability) : glDisable(capability);
}

}  // namespace

Painter::Painter() : error_(Start()) {}

std::string Painter::Start() {
    program_ = glCreateProgram();
    for (const GLuint shader :
         {Compile(GL_VERTEX_SHADER, kVertexShader), Compile(GL_FRAGMENT_SHADER, kFragmentShader)}) {
        glAttachShader(program_, shader);
        glDeleteShader(shader);
    }
    glLinkProgram(program_);
    GLint isLinked = GL_FALSE;
    glGetProgramiv(program_, GL_LINK_STATUS, &isLinked);
    if (!isLinked) return "the renderer does not take the shaders";
    glGenVertexArrays(1, &layout_);
    glBindVertexArray(layout_);
    glGenBuffers(1, &vertices_);
    glBindBuffer(GL_ARRAY_BUFFER, vertices_);
    DescribeFloats(kPlace, offsetof(DrawVertex, place));
    DescribeFloats(kNormal, offsetof(DrawVertex, normal));
    DescribeFloats(kColour, offsetof(DrawVertex, colour));
    glPolygonOffset(kFaceSlope, kFaceUnits);
    glEnable(GL_POLYGON_OFFSET_FILL);
    glDepthFunc(GL_LEQUAL);
    return "";
}

Painter::~Painter() {
    glDeleteBuffers(1, &vertices_);
    glDeleteVertexArrays(1, &layout_);
    glDeleteProgram(program_);
}

// The columns of the matrix that make w are the direction of the view.
void Painter::Draw(const DrawList& list, const View& view) const {
    glUseProgram(program_);
    glUniformMatrix4fv(glGetUniformLocation(program_, "toClip"), 1, GL_FALSE,
                       view.toClip.front().data());
    glUniform3f(glGetUniformLocation(program_, "ahead"), view.toClip[0][3], view.toClip[1][3],
                view.toClip[2][3]);
    for (const DrawBatch& batch : list.batches)
        Draw(batch);
}

void Painter::Draw(const DrawBatch& batch) const {
    glUniform1i(glGetUniformLocation(program_, "isLit"), batch.isLit ? 1 : 0);
    Enable(GL_DEPTH_TEST, batch.usesDepth);
    Enable(GL_CULL_FACE, batch.cullsBackfaces);
    glBufferData(GL_ARRAY_BUFFER,
                 static_cast<GLsizeiptr>(batch.vertices.size() * sizeof(DrawVertex)),
                 batch.vertices.data(), GL_STREAM_DRAW);
    glDrawArrays(batch.isTriangles ? GL_TRIANGLES : GL_LINES, 0,
                 static_cast<GLsizei>(batch.vertices.size()));
}

}  // namespace headless
