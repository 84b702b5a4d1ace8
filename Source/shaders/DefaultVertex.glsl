attribute vec4 vertex; attribute vec2 uv0; uniform mat4 _worldViewProj; varying vec2 textureCoord; void main() { gl_Position = _worldViewProj * vertex; textureCoord = uv0; }
