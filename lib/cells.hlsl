// Walks through the cells around a point: each call moves o to the next offset, -r to r in each component, x fastest,
// and says whether there is one. So one flat loop serves every dimension, and its body stands in the text once.
bool cell_next1(inout float o, float r)
{
    o += 1.0;
    return o <= r;
}

bool cell_next2(inout float2 o, float r)
{
    if (cell_next1(o.x, r)) return true;
    o.x = -r;
    return cell_next1(o.y, r);
}

bool cell_next3(inout float3 o, float r)
{
    if (cell_next1(o.x, r)) return true;
    o.x = -r;
    return cell_next2(o.yz, r);
}

bool cell_next4(inout float4 o, float r)
{
    if (cell_next1(o.x, r)) return true;
    o.x = -r;
    return cell_next3(o.yzw, r);
}
