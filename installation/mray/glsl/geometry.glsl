// The normal of the object, of length 1, towards the viewer's side.
vec3 mrNormal()
{
    vec3 n = normalize(tvNormal);
    return gl_FrontFacing ? n : -n;
}

// The direction from the surface to the viewer.
vec3 mrView()
{
    return normalize(tvEye - tvPosition);
}
