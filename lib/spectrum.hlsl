// Colours of light by temperature and by wavelength.

// Linear Rec.709 colour of a black body, at a luminance of about 1, negative components not clamped. temperature is in
// kelvins. Below 800 and from 12000 on the colour is constant; in between it is a fit in seven pieces:
// a / T + b * T + c for red and green, a cubic polynomial for blue. The jumps between the pieces (up to 2e-3) are
// Blender's. Tolerance: 1e-6 of the largest component.
float3 blackbody_rec709(float temperature) {
  float t = temperature;
  if (t >= 12000.0) return float3(0.82629548, 0.99450805, 1.56630771);
  if (t < 800.0) return float3(5.41329449, -0.203193900, -0.0822535243);
  float3 red = float3(1619.19106, -2.05010916e-3, 5.02995757);
  float3 green = float3(-488.999748, 6.04330754e-4, -0.0755807526);
  float4 blue = float4(5.96945309e-11, -4.85742887e-8, -9.70622247e-5, -4.07936148e-3);
  if (t >= 6365.0) {
    red = float3(3787.17450, 9.35907826e-6, 0.399075871);
    green = float3(-500.799571, -4.59832026e-6, 1.09098763);
    blue = float4(6.72650283e-13, -2.73078809e-8, 4.24098264e-4, -0.752335691);
  } else if (t >= 3315.0) {
    red = float3(4595.09185, 2.87495649e-5, 0.150345020);
    green = float3(-1175.54822, -2.16378048e-5, 1.30408023);
    blue = float4(-1.61997957e-13, -1.64216008e-8, 3.86216271e-4, -0.738077418);
  } else if (t >= 1902.0) {
    red = float3(4670.28036, 2.91258199e-5, 0.126703442);
    green = float3(-1425.29332, -4.01150431e-5, 1.43972784);
    blue = float4(-1.97075738e-11, 1.75359352e-7, -2.50542825e-4, -0.0222783266);
  } else if (t >= 1449.0) {
    red = float3(4094.61742, -1.27446582e-4, 0.725731635);
    green = float3(-1265.71316, 4.87340896e-6, 1.27054498);
    blue = float4(-3.61460868e-11, 2.84822009e-7, -4.93211319e-4, 0.156723440);
  } else if (t >= 1167.0) {
    red = float3(3341.43193, -4.86551192e-4, 1.76486769);
    green = float3(-1023.63977, 1.20223470e-4, 0.936662319);
    blue = float4(-1.40949732e-11, 1.89878968e-7, -3.56632824e-4, 0.0910767778);
  } else if (t >= 965.0) {
    red = float3(2488.45471, -1.11330907e-3, 3.22621544);
    green = float3(-755.994277, 3.16730098e-4, 0.478306139);
    blue = float4(2.40430366e-11, 5.55021075e-8, -1.98503712e-4, 0.0289312858);
  }
  float2 hot = float2(red.x, green.x) * (1.0 / t) + float2(red.y, green.y) * t + float2(red.z, green.z);
  return float3(hot, ((blue.x * t + blue.y) * t + blue.z) * t + blue.w);
}

// Tristimulus values X, Y, Z of light of one wavelength in nanometres (CIE 1931, two degrees), linear between samples 5
// nm apart; 0 outside 380 to 780. As in Blender, the first interval is extrapolated to 375, which gives slightly
// negative values. The table is in units of 1/10000 to keep it short. Tolerance: 1e-6.
float3 wavelength_xyz(float wavelength) {
  float p = (wavelength - 380.0) * 0.2;
  if (!(p > -1.0 && p < 80.0)) return float3(0.0, 0.0, 0.0);
  const float xyz[243] = {
    14, 0, 65, 22, 1, 105, 42, 1, 201, 76, 2, 362, 143, 4, 679, 232, 6, 1102, 435, 12, 2074, 776, 22, 3713,
    1344, 40, 6456, 2148, 73, 10391, 2839, 116, 13856, 3285, 168, 16230, 3483, 230, 17471, 3481, 298, 17826,
    3362, 380, 17721, 3187, 480, 17441, 2908, 600, 16692, 2511, 739, 15281, 1954, 910, 12876, 1421, 1126, 10419,
    956, 1390, 8130, 580, 1693, 6162, 320, 2080, 4652, 147, 2586, 3533, 49, 3230, 2720, 24, 4073, 2123, 93,
    5030, 1582, 291, 6082, 1117, 633, 7100, 782, 1096, 7932, 573, 1655, 8620, 422, 2257, 9149, 298, 2904, 9540,
    203, 3597, 9803, 134, 4334, 9950, 87, 5121, 10000, 57, 5945, 9950, 39, 6784, 9786, 27, 7621, 9520, 21, 8425,
    9154, 18, 9163, 8700, 17, 9786, 8163, 14, 10263, 7570, 11, 10567, 6949, 10, 10622, 6310, 8, 10456, 5668, 6,
    10026, 5030, 3, 9384, 4412, 2, 8544, 3810, 2, 7514, 3210, 1, 6424, 2650, 0, 5419, 2170, 0, 4479, 1750, 0,
    3608, 1382, 0, 2835, 1070, 0, 2187, 816, 0, 1649, 610, 0, 1212, 446, 0, 874, 320, 0, 636, 232, 0, 468, 170,
    0, 329, 119, 0, 227, 82, 0, 158, 57, 0, 114, 41, 0, 81, 29, 0, 58, 21, 0, 41, 15, 0, 29, 10, 0, 20, 7, 0,
    14, 5, 0, 10, 4, 0, 7, 2, 0, 5, 2, 0, 3, 1, 0, 2, 1, 0, 2, 1, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0
  };
  int i = int(p), k = 3 * i;
  float3 a = float3(xyz[k], xyz[k + 1], xyz[k + 2]), b = float3(xyz[k + 3], xyz[k + 4], xyz[k + 5]);
  return (a + (p - float(i)) * (b - a)) / 10000.0;
}
