// The shaders use the compatibility profile: they read the matrices, the light and the material of fixed-function
// OpenGL, and the vertices come from client arrays (glVertexPointer and its family). Each program is composed of
// the parts below; ShaderSources() at the end lists which parts.
#include "render/ShaderSources.h"

namespace {

// First line of every source.
const std::string kVersion = "#version 330 compatibility\n";

// Per vertex, in the programs with lighting: normal, direction to the light and position, all in eye coordinates. The
// light moves with the camera.
const std::string kLitVertex = R"(
uniform vec3 lightpos = vec3(0.0, 5.0, 0.0);
out vec3 normal;
out vec3 lightdir;
out vec3 epos;

void light_vertex() {
    vec3 n = gl_NormalMatrix * gl_Normal;
    normal = n == vec3(0.0) ? vec3(0.0) : normalize(n);
    vec4 position = gl_ModelViewMatrix * gl_Vertex;
    epos = position.xyz;
    lightdir = normalize(lightpos - position.xyz);
    gl_Position = gl_ProjectionMatrix * position;
}
)";

// Per fragment, in the programs with lighting: Phong terms of a front and of a back face. The interpolated normal is
// not normalised again. Without a normal reflect() would return the incoming ray and make a highlight, hence the test.
const std::string kLitFragment = R"(
in vec3 normal;
in vec3 lightdir;
in vec3 epos;
uniform float shininess = 100.0;

float front_light() { return max(dot(lightdir, normal), 0.0); }
float back_light() { return max(dot(lightdir, -normal), 0.0); }

float highlight() {
    if (normal == vec3(0.0)) return 0.0;
    vec3 eye = normalize(-epos);
    vec3 r = normalize(reflect(-lightdir, normal));
    float nDotR = max(dot(eye, r), 0.0);
    return nDotR == 0.0 ? 0.0 : pow(nDotR, shininess);
}
)";

// Mode per pixel: the colour of a fragment is the vertex colour or the texture, times the light colour that carries the
// tint of the object. gl_ClipVertex is what GL_CLIP_PLANE0 clips: without it the result is undefined by OpenGL; drivers
// test gl_Position.
const std::string kPerPixelVertexMain = R"(
out vec4 mesh_color;

void main() {
    light_vertex();
    gl_ClipVertex = vec4(epos, 1.0);
    mesh_color = gl_Color;
}
)";

const std::string kTexPerPixelVertexMain = R"(
out vec2 uvCoords;

void main() {
    light_vertex();
    gl_ClipVertex = vec4(epos, 1.0);
    uvCoords = gl_MultiTexCoord0.st;
}
)";

// The two sources of the colour of a surface: vertex colour or texture. A lit program contains one of them.
const std::string kMeshColor = R"(
in vec4 mesh_color;
vec4 surface_color() { return mesh_color; }
)";

const std::string kTextureColor = R"(
in vec2 uvCoords;
uniform sampler2D tex;
vec4 surface_color() { return texture(tex, uvCoords); }
)";

// The fourth component of each colour is its weight. A back face is a neutral grey, lit with the reversed normal.
const std::string kPerPixelFragmentMain = R"(
uniform vec4 colorAmbient = vec4(1.0, 1.0, 1.0, 0.1);
uniform vec4 colorDiffuse = vec4(0.7, 0.7, 0.7, 0.7);
uniform vec4 colorSpecular = vec4(1.0, 1.0, 1.0, 0.5);

void main() {
    float ka = colorAmbient.w;
    float kd = colorDiffuse.w;
    float ks = colorSpecular.w;
    vec4 blendColor = gl_LightSource[0].diffuse;
    vec3 diffuse = vec3(surface_color() * blendColor);
    vec3 specular = vec3(colorSpecular);
    if (gl_FrontFacing) {
        gl_FragColor = vec4(diffuse * ka + diffuse * front_light() * kd + specular * highlight() * ks, 1.0);
    } else {
        gl_FragColor = vec4(vec3(0.3) * ka + vec3(0.3) * back_light() * kd, 1.0);
    }
}
)";

// Signed distance to the clip plane in object coordinates, which are world coordinates here. Negative is clipped.
const std::string kClipVertex = R"(
uniform vec4 clipPlaneEquation0 = vec4(0.0, 0.0, 0.0, 1.0);
out float clipDistance0;

void clip_vertex() { clipDistance0 = dot(clipPlaneEquation0, gl_Vertex); }
)";

// The programs discard what is clipped: they write no gl_ClipVertex, without which GL_CLIP_PLANE0 is undefined by
// OpenGL; drivers test gl_Position.
const std::string kClipFragment = R"(
uniform int clipPlane0Enabled = 0;
in float clipDistance0;

bool is_clipped() { return clipPlane0Enabled == 1 && clipDistance0 < 0.0; }
)";

// Shadow mapping, second pass: the position of a vertex in the shadow map, texture coordinates and depth in 0..1.
const std::string kShadowVertexMain = R"(
uniform mat4 shadowProjection;
uniform mat4 shadowModelView;
out vec4 mesh_color;
out vec4 shadow_coord;

// From -1..1 to 0..1.
const mat4 biasMatrix = mat4(0.5, 0.0, 0.0, 0.0,
                             0.0, 0.5, 0.0, 0.0,
                             0.0, 0.0, 0.5, 0.0,
                             0.5, 0.5, 0.5, 1.0);

void main() {
    light_vertex();
    clip_vertex();
    mesh_color = gl_Color;
    shadow_coord = biasMatrix * shadowProjection * shadowModelView * gl_Vertex;
}
)";

// A fragment is in shadow when the map holds a nearer surface; the bias of 0.005 of the depth range avoids that a
// surface shadows itself. No division by w: the projection of the map is orthographic. The depth is in the red channel,
// with the default depth texture mode as in a core profile.
const std::string kShadowFragmentMain = R"(
uniform sampler2D ShadowMap;
uniform vec4 colorAmbient = vec4(0.5, 0.5, 0.5, 0.1);
uniform vec4 colorDiffuse = vec4(0.7, 0.7, 0.7, 1.0);
uniform vec4 colorSpecular = vec4(0.7, 0.7, 0.7, 0.5);
uniform vec3 shadowColor = vec3(0.0, 0.0, 0.4);
uniform int red_shadow = 1;
in vec4 mesh_color;
in vec4 shadow_coord;

void main() {
    if (is_clipped()) discard;
    float ka = colorAmbient.w;
    float kd = colorDiffuse.w;
    float ks = colorSpecular.w;
    vec4 blendColor = gl_LightSource[0].diffuse;
    vec3 diffuse = vec3(mesh_color * blendColor);
    vec3 specular = vec3(gl_FrontMaterial.specular);
    float shadow = texture(ShadowMap, shadow_coord.xy).r < shadow_coord.z - 0.005 ? 0.5 : 1.0;
    vec3 color;
    // Not negated: softpipe and virgl compile !gl_FrontFacing wrongly (Mesa 22.3), and all faces become back faces.
    if (gl_FrontFacing) {
        if (shadow < 1.0)
            color = shadowColor + diffuse * front_light() * kd * shadow + specular * highlight() * ks;
        else
            color = diffuse * ka + diffuse * front_light() * kd + specular * highlight() * ks;
    } else {
        color = vec3(0.3) * ka + vec3(0.3) * back_light() * kd;
    }
    gl_FragColor = vec4(color, 1.0);
}
)";

// Mask, first step: a white silhouette of the objects.
const std::string kCreateMaskVertexMain = R"(
void main() {
    clip_vertex();
    gl_Position = gl_ProjectionMatrix * gl_ModelViewMatrix * gl_Vertex;
}
)";

const std::string kCreateMaskFragmentMain = R"(
void main() {
    if (is_clipped()) discard;
    gl_FragColor = vec4(1.0, 1.0, 1.0, 1.0);
}
)";

// Mask, second step: mask times image over the whole window. Both images have their top row first, hence the flipped y.
const std::string kUseMaskVertex = R"(
out vec2 TexCoords;

void main() {
    TexCoords = gl_Vertex.xy * vec2(0.5, -0.5) + vec2(0.5, 0.5);
    gl_Position = gl_Vertex;
}
)";

const std::string kUseMaskFragment = R"(
in vec2 TexCoords;
uniform sampler2D mask;
uniform sampler2D tex;

void main() {
    vec4 masked = texture(mask, TexCoords);
    vec4 px = texture(tex, TexCoords);
    gl_FragColor = masked * px;
}
)";

// Shadow mapping, first pass: depth only.
const std::string kDepthVertex = R"(
void main() { gl_Position = gl_ProjectionMatrix * gl_ModelViewMatrix * gl_Vertex; }
)";

// The framebuffer of the shadow map has no colour buffer to write.
const std::string kDepthFragment = R"(
void main() { }
)";

// Diagnosis: the shadow map as shades of grey over the whole window.
const std::string kQuadVertex = R"(
out vec2 TexCoords;

void main() {
    TexCoords = gl_Vertex.xy * vec2(0.5, 0.5) + vec2(0.5, 0.5);
    gl_Position = gl_Vertex;
}
)";

const std::string kQuadFragment = R"(
in vec2 TexCoords;
uniform sampler2D tex;

void main() {
    float z = texture(tex, TexCoords).r;
    gl_FragColor = vec4(z, z, z, 1.0);
}
)";

// Point clouds of the host. The point size is in scene units, so that points grow with the zoom and the window height.
const std::string kFreeFloatingPointsVertex = R"(
layout (location = 0) in vec3 in_position;
layout (location = 1) in vec3 in_vertexColor;
uniform float pointSize;
uniform float windowHeight;
uniform float alpha;
out vec4 vColor;

void main() {
    gl_Position = gl_ProjectionMatrix * gl_ModelViewMatrix * vec4(in_position, 1.0);
    gl_PointSize = windowHeight * gl_ProjectionMatrix[1][1] * pointSize / gl_Position.w;
    vColor = vec4(in_vertexColor, alpha);
}
)";

// Unlit, in the colour of the point with the opacity of its set.
const std::string kFreeFloatingPointsFragment = R"(
in vec4 vColor;

void main() { gl_FragColor = vColor; }
)";

}  // namespace

const std::array<ShaderSource, kShaderCount>& ShaderSources() {
    static const std::array<ShaderSource, kShaderCount> kSources = {{
        {"perpixel", kVersion + kLitVertex + kPerPixelVertexMain,
         kVersion + kLitFragment + kMeshColor + kPerPixelFragmentMain},
        {"texperpixel", kVersion + kLitVertex + kTexPerPixelVertexMain,
         kVersion + kLitFragment + kTextureColor + kPerPixelFragmentMain},
        {"create mask", kVersion + kClipVertex + kCreateMaskVertexMain,
         kVersion + kClipFragment + kCreateMaskFragmentMain},
        {"use mask", kVersion + kUseMaskVertex, kVersion + kUseMaskFragment},
        {"depth", kVersion + kDepthVertex, kVersion + kDepthFragment},
        {"quad", kVersion + kQuadVertex, kVersion + kQuadFragment},
        {"shadow", kVersion + kLitVertex + kClipVertex + kShadowVertexMain,
         kVersion + kLitFragment + kClipFragment + kShadowFragmentMain},
        {"freeFloatingPoints", kVersion + kFreeFloatingPointsVertex, kVersion + kFreeFloatingPointsFragment},
    }};
    return kSources;
}
