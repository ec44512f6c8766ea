// Iteration over the cells around a point.

// Each call advances o to the next offset, -r to r in each component, x fastest, and returns whether there is one. So
// one flat loop serves every dimension and contains its body once.
bool cell_next1(inout int o, int r)
{
    o += 1;
    return o <= r;
}

bool cell_next2(inout int2 o, int r)
{
    if (cell_next1(o.x, r)) return true;
    o.x = -r;
    return cell_next1(o.y, r);
}

bool cell_next3(inout int3 o, int r)
{
    if (cell_next1(o.x, r)) return true;
    o.x = -r;
    return cell_next2(o.yz, r);
}

// The same for rows of cells along x.
bool cell_next_row2(inout int2 o, int r)
{
    return cell_next1(o.y, r);
}

bool cell_next_row3(inout int3 o, int r)
{
    return cell_next2(o.yz, r);
}

bool cell_next_row4(inout int4 o, int r)
{
    return cell_next3(o.yzw, r);
}

// Searches for a nearest point visit cells from the inside out, so that farther ones can be skipped: offsets 0, -1, 1
// for i = 0, 1, 2.
int cell_offset(uint i)
{
    return int(i >> 1) - int(i & 1u);
}

// The offset of the middle cell of a row along x; there are 3, 9 or 27 rows.
int2 cell_row2(uint row)
{
    return int2(0, cell_offset(row));
}

int3 cell_row3(uint row)
{
    return int3(0, cell_offset(row % 3u), cell_offset(row / 3u));
}

int4 cell_row4(uint row)
{
    return int4(0, cell_offset(row % 3u), cell_offset(row / 3u % 3u), cell_offset(row / 9u));
}

// A key for offsets from -1 to 1, which orders cells with x fastest, then y, z, w; and its inverse.
int cell_key2(int2 o)
{
    return o.x + 4 * o.y;
}

int cell_key3(int3 o)
{
    return o.x + 4 * o.y + 16 * o.z;
}

int cell_key4(int4 o)
{
    return o.x + 4 * o.y + 16 * o.z + 64 * o.w;
}

// Adding 85 = 1 + 4 + 16 + 64 makes each pair of bits an offset plus one.
// @each DIM 2 3 4
intDIM cell_of_keyDIM(int key)
{
    return (intDIM)(int4(key + 85, (key + 85) >> 2, (key + 85) >> 4, (key + 85) >> 6) & 3) - 1;
}
