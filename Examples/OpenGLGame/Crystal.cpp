#include "Crystal.h"

#define GL_GLEXT_PROTOTYPES
#include <GL/glcorearb.h>

#include <cmath>
#include <cstdio>
#include <numbers>
#include <vector>

namespace flarebox::openglgame {
namespace {

constexpr int sides = 7;
constexpr int verticesPerFace = 3, faces = 2 * sides;
constexpr double secondsPerTurn = 6;

constexpr const char* vertexShader = R"(#version 330 core
layout(location = 0) in vec3 position;
layout(location = 1) in vec3 normal;
uniform float angle;
uniform float aspect;
out vec3 turned;
vec3 turn(vec3 v) {
    vec3 around = vec3(v.x * cos(angle) + v.z * sin(angle), v.y, v.z * cos(angle) - v.x * sin(angle));
    return vec3(around.x, around.y * 0.94 - around.z * 0.34, around.z * 0.94 + around.y * 0.34);
}
void main() {
    turned = turn(normal);
    vec3 place = turn(position);
    // To the right of the middle, where the open tab leaves room.
    gl_Position = vec4((place.x + 0.9) / aspect, place.y, -place.z * 0.4, 2.2 - place.z * 0.5);
}
)";

constexpr const char* fragmentShader = R"(#version 330 core
in vec3 turned;
out vec4 color;
void main() {
    float light = max(dot(normalize(turned), normalize(vec3(0.4, 0.7, 0.6))), 0.0);
    color = vec4(mix(vec3(0.10, 0.22, 0.45), vec3(0.55, 0.95, 0.90), light), 1.0);
}
)";

GLuint makeShader(GLenum kind, const char* source) {
    const GLuint shader = glCreateShader(kind);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    return shader;
}

GLuint makeProgram() {
    const GLuint vertex = makeShader(GL_VERTEX_SHADER, vertexShader);
    const GLuint fragment = makeShader(GL_FRAGMENT_SHADER, fragmentShader);
    const GLuint program = glCreateProgram();
    glAttachShader(program, vertex);
    glAttachShader(program, fragment);
    glLinkProgram(program);
    glDeleteShader(vertex);
    glDeleteShader(fragment);
    GLint isLinked = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &isLinked);
    if (!isLinked) std::fputs("flarebox-openglgame: the game's own shader cannot be made\n", stderr);
    return program;
}

struct Point {
    float x, y, z;
};

void addFace(std::vector<Point>& vertices, Point a, Point b, Point c) {
    const Point u{b.x - a.x, b.y - a.y, b.z - a.z}, v{c.x - a.x, c.y - a.y, c.z - a.z};
    const Point normal{u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
    for (const Point& corner : {a, b, c}) {
        vertices.push_back(corner);
        vertices.push_back(normal);
    }
}

/// Two pyramids, base to base; a corner is followed by its face's normal.
std::vector<Point> makeFaces() {
    const auto rim = [](int index) {
        const double angle = 2 * std::numbers::pi * index / sides;
        return Point{static_cast<float>(std::cos(angle)), 0.1F, static_cast<float>(std::sin(angle))};
    };
    std::vector<Point> vertices;
    for (int i = 0; i < sides; ++i) {
        addFace(vertices, {0, 0.9F, 0}, rim(i + 1), rim(i));
        addFace(vertices, {0, -1.4F, 0}, rim(i), rim(i + 1));
    }
    return vertices;
}

}  // namespace

Crystal::Crystal() : program_(makeProgram()) {
    const std::vector<Point> vertices = makeFaces();
    glGenVertexArrays(1, &vertexArray_);
    glBindVertexArray(vertexArray_);
    glGenBuffers(1, &buffer_);
    glBindBuffer(GL_ARRAY_BUFFER, buffer_);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertices.size() * sizeof(Point)), vertices.data(),
                 GL_STATIC_DRAW);
    for (GLuint i = 0; i < 2; ++i) {
        glEnableVertexAttribArray(i);
        glVertexAttribPointer(i, 3, GL_FLOAT, GL_FALSE, 2 * sizeof(Point),
                              reinterpret_cast<const void*>(i * sizeof(Point)));
    }
}

Crystal::~Crystal() {
    glDeleteProgram(program_);
    glDeleteVertexArrays(1, &vertexArray_);
    glDeleteBuffers(1, &buffer_);
}

void Crystal::draw(int width, int height, double seconds) const {
    const double turns = seconds / secondsPerTurn;
    glViewport(0, 0, width, height);
    glClearColor(0.07F, 0.09F, 0.16F, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_CULL_FACE);
    glUseProgram(program_);
    glUniform1f(glGetUniformLocation(program_, "angle"),
                static_cast<float>((turns - std::floor(turns)) * 2 * std::numbers::pi));
    glUniform1f(glGetUniformLocation(program_, "aspect"), static_cast<float>(width) / static_cast<float>(height));
    glBindVertexArray(vertexArray_);
    glDrawArrays(GL_TRIANGLES, 0, faces * verticesPerFace);
}

}  // namespace flarebox::openglgame
