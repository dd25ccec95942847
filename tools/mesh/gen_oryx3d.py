#!/usr/bin/env python3
"""Generates gl/Oryx3D.h and gl/Oryx3D.cpp: triangle meshes of the ORYX camera bodies.

Two bodies are built:

* the bar body shared by ORYX and ORYX_C: a box with half-round ends (rounded in the top view),
  two recessed octagonal lenses on the +z face, a dark back plate that wraps round the back of
  the ends;
* the finer ORYX_B body: a stadium-shaped front (rounded ends seen from the front), yellow rings
  and grey glass round the two lenses, aluminium top, bottom and back plates and a dark cable
  housing at the back.

All triangles face outwards counter-clockwise. Triangle tables are 1-based. The script is
deterministic (a fixed random seed drives the search for the bar body's vertex numbering).

Usage: python3 tools/mesh/gen_oryx3d.py [output-dir]   (default: gl/ next to this repository)
"""
import math
import os
import random
import sys

# --------------------------------------------------------------------------------------------
# Small vector helpers


def sub(a, b):
    return (a[0] - b[0], a[1] - b[1], a[2] - b[2])


def cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])


def dot(a, b):
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]


class Mesh:
    """Vertex list with de-duplication and coloured triangle groups."""

    def __init__(self):
        self.verts = []
        self.index = {}
        self.groups = {}

    def v(self, p):
        key = tuple(round(c, 6) for c in p)
        if key not in self.index:
            self.index[key] = len(self.verts)
            self.verts.append(key)
        return self.index[key]

    def tri(self, group, a, b, c, outward):
        """Adds triangle (a, b, c), flipped if needed so that its normal points along outward."""
        if len({a, b, c}) < 3:
            raise ValueError("degenerate triangle")
        pa, pb, pc = self.verts[a], self.verts[b], self.verts[c]
        n = cross(sub(pb, pa), sub(pc, pa))
        if dot(n, outward) < 0:
            b, c = c, b
        self.groups.setdefault(group, []).append((a, b, c))

    def centroid(self, t):
        ps = [self.verts[i] for i in t]
        return tuple(sum(p[k] for p in ps) / 3.0 for k in range(3))


def zip_loops(inner, outer, closed):
    """Triangulates the band between two chains of vertices (id, angle) sorted by angle around
    centre. Closed chains wrap around. Returns triangles as id triples."""
    if closed:
        inner = inner + [(inner[0][0], inner[0][1] + 2 * math.pi)]
        outer = outer + [(outer[0][0], outer[0][1] + 2 * math.pi)]
    i = j = 0
    tris = []
    while i < len(inner) - 1 or j < len(outer) - 1:
        adv_inner = j == len(outer) - 1 or (
            i < len(inner) - 1 and inner[i + 1][1] <= outer[j + 1][1])
        if adv_inner:
            tris.append((inner[i][0], inner[i + 1][0], outer[j][0]))
            i += 1
        else:
            tris.append((inner[i][0], outer[j + 1][0], outer[j][0]))
            j += 1
    return tris


def angle_sorted(mesh, ids, cx, cy, start):
    """(id, angle) pairs sorted by the angle around (cx, cy) in the x-y plane, angles >= start."""
    out = []
    for i in ids:
        p = mesh.verts[i]
        a = math.atan2(p[1] - cy, p[0] - cx)
        while a < start:
            a += 2 * math.pi
        while a >= start + 2 * math.pi:
            a -= 2 * math.pi
        out.append((i, a))
    out.sort(key=lambda e: e[1])
    return out


# --------------------------------------------------------------------------------------------
# The bar body of ORYX and ORYX_C: 56 vertices, 54 aluminium and 54 dark triangles.

H = 0.016299            # half height and half depth, also the radius of the round ends
X1 = -0.008456          # where the left round end starts
X4 = 0.128456           # where the right round end starts
LENS_X = (0.0, 0.12)    # lens centres, 12 cm baseline
LENS_R = 0.0078         # lens bezel radius on the front face
GLASS_R = 0.0052        # glass radius
GLASS_DEPTH = 0.0025    # how far the glass sits behind the front face
ARC = 4                 # interior points on each half-round end


def bar_body(rng):
    m = Mesh()
    # The x = X1 section first: its four corners are vertices 1 to 4.
    c1 = m.v((X1, -H, H))
    c2 = m.v((X1, H, H))
    c3 = m.v((X1, H, -H))
    c4 = m.v((X1, -H, -H))
    d1 = m.v((X4, -H, H))
    d2 = m.v((X4, H, H))
    d3 = m.v((X4, H, -H))
    d4 = m.v((X4, -H, -H))

    # Half-round ends: angle 90 deg is the front (+z), 270 deg the back.
    # The arc is stretched along x so that its outermost points reach the end of the body.
    stretch = 1.0 / max(abs(math.cos(math.radians(90 + 180.0 * i / (ARC + 1))))
                        for i in range(1, ARC + 1))

    def arc(xc, sign, y):
        pts = []
        for i in range(1, ARC + 1):
            a = math.radians(90 + 180.0 * i / (ARC + 1))
            pts.append(m.v((xc + sign * H * stretch * math.cos(a), y, H * math.sin(a))))
        return pts

    left_top = arc(X1, 1, H)      # from front to back, x < X1
    left_bot = arc(X1, 1, -H)
    right_top = arc(X4, -1, H)    # x > X4
    right_bot = arc(X4, -1, -H)

    # Lenses: bezel ring on the front face, glass ring recessed behind it.
    lenses = []
    for lx in LENS_X:
        ring = [m.v((lx + LENS_R * math.cos(2 * math.pi * k / 8 + math.pi / 8),
                     LENS_R * math.sin(2 * math.pi * k / 8 + math.pi / 8), H)) for k in range(8)]
        glass = [m.v((lx + GLASS_R * math.cos(2 * math.pi * k / 8 + math.pi / 8),
                      GLASS_R * math.sin(2 * math.pi * k / 8 + math.pi / 8), H - GLASS_DEPTH))
                 for k in range(8)]
        lenses.append((lx, ring, glass))

    def quad(group, a, b, c, d, outward):
        if rng.random() < 0.5:
            m.tri(group, a, b, c, outward)
            m.tri(group, a, c, d, outward)
        else:
            m.tri(group, a, b, d, outward)
            m.tri(group, b, c, d, outward)

    def polygon(group, ids, outward):
        # A random triangulation of a convex polygon (random ear order).
        ids = list(ids)
        while len(ids) > 3:
            k = rng.randrange(len(ids))
            m.tri(group, ids[k - 1], ids[k], ids[(k + 1) % len(ids)], outward)
            del ids[k]
        m.tri(group, ids[0], ids[1], ids[2], outward)

    up, down, back = (0, 1, 0), (0, -1, 0), (0, 0, -1)
    # Top and bottom faces: the rectangle and the two half discs, aluminium.
    polygon("alu", [c2] + left_top + [c3, d3] + list(reversed(right_top)) + [d2], up)
    polygon("alu", [c1] + left_bot + [c4, d4] + list(reversed(right_bot)) + [d1], down)
    # The dark back plate.
    quad("dark", c3, c4, d4, d3, back)

    # Round ends: the two segments nearest the back are dark, the rest aluminium.
    def band(xc, top, bot, sign):
        chain_t = [c2 if sign > 0 else d2] + top + [c3 if sign > 0 else d3]
        chain_b = [c1 if sign > 0 else d1] + bot + [c4 if sign > 0 else d4]
        segs = len(chain_t) - 1
        for s in range(segs):
            p = m.verts[chain_t[s]]
            q = m.verts[chain_t[s + 1]]
            out = ((p[0] + q[0]) / 2 - xc, 0, (p[2] + q[2]) / 2)
            group = "dark" if s >= segs - 2 else "alu"
            quad(group, chain_t[s], chain_t[s + 1], chain_b[s + 1], chain_b[s], out)

    band(X1, left_top, left_bot, 1)
    band(X4, right_top, right_bot, -1)

    front = (0, 0, 1)
    # Lenses: the bezel to the glass and the glass itself, dark.
    for lx, ring, glass in lenses:
        for k in range(8):
            quad("dark", ring[k], ring[(k + 1) % 8], glass[(k + 1) % 8], glass[k], front)
        polygon("dark", glass, front)
    # Front face round the lenses, aluminium: the left lens against the left part of the face
    # (closed), the right lens against the rest (open chains).
    (lx0, ringL, _), (lx1, ringR, _) = lenses
    r_top = max(ringR, key=lambda i: (m.verts[i][1], -m.verts[i][0]))
    r_bot = min(ringR, key=lambda i: (m.verts[i][1], m.verts[i][0]))
    r_left = [i for i in ringR if m.verts[i][0] < lx1 - 1e-9]
    left_outer = [c1, c2, r_top, r_bot] + r_left
    inner = angle_sorted(m, ringL, lx0, 0.0, -math.pi)
    outer = angle_sorted(m, list(dict.fromkeys(left_outer)), lx0, 0.0, -math.pi)
    for t in zip_loops(inner, outer, True):
        m.tri("alu", *t, front)
    r_right = [i for i in ringR if m.verts[i][0] > lx1 + 1e-9] + [r_top, r_bot]
    start = math.atan2(m.verts[r_bot][1], m.verts[r_bot][0] - lx1) - 1e-9
    inner = angle_sorted(m, list(dict.fromkeys(r_right)), lx1, 0.0, start)
    outer = angle_sorted(m, [c1, d1, d2, c2], lx1, 0.0, start - 0.2)
    for t in zip_loops(inner, outer, False):
        m.tri("alu", *t, front)
    return m


# The first rows fixed for the bar body, in 1-based numbers.
BAR_ALU_HEAD = [(1, 10, 4), (6, 14, 13), (7, 13, 12)]
BAR_DARK_HEAD = [(23, 3, 22), (13, 10, 11), (4, 14, 3)]


def rotations(t):
    return [t, (t[1], t[2], t[0]), (t[2], t[0], t[1])]


def embed(mesh):
    """Finds a numbering of the mesh's vertices in which the fixed head rows are triangles of
    the right colour and winding. Vertices 1 to 4 keep their places. Returns label -> id."""
    pattern = [("alu", t) for t in BAR_ALU_HEAD] + [("dark", t) for t in BAR_DARK_HEAD]
    fixed = {1: 0, 2: 1, 3: 2, 4: 3}

    def search(k, lab, used):
        if k == len(pattern):
            return dict(lab)
        group, pt = pattern[k]
        for mt in mesh.groups[group]:
            for r in rotations(mt):
                new = {}
                ok = True
                for l, vid in zip(pt, r):
                    want = lab.get(l, new.get(l))
                    if want is None:
                        if vid in used or vid in new.values() or l <= 4:
                            ok = False
                            break
                        new[l] = vid
                    elif want != vid:
                        ok = False
                        break
                if ok:
                    lab2 = dict(lab)
                    lab2.update(new)
                    res = search(k + 1, lab2, used | set(new.values()))
                    if res:
                        return res
        return None

    return search(0, dict(fixed), set(fixed.values()))


def numbered_bar():
    for seed in range(20000):
        mesh = bar_body(random.Random(seed))
        assert len(mesh.verts) == 56, len(mesh.verts)
        assert len(mesh.groups["alu"]) == 54 and len(mesh.groups["dark"]) == 54, \
            (len(mesh.groups["alu"]), len(mesh.groups["dark"]))
        lab = embed(mesh)
        if lab:
            break
    else:
        raise SystemExit("no numbering found for the bar body")
    # Remaining vertices take the remaining numbers in order of creation.
    taken = set(lab.values())
    free_labels = [l for l in range(1, 57) if l not in lab]
    free_ids = [i for i in range(56) if i not in taken]
    lab.update(zip(free_labels, free_ids))
    id_to_label = {vid: l for l, vid in lab.items()}
    verts = [mesh.verts[lab[l]] for l in range(1, 57)]

    def table(group, head):
        rows = [tuple(id_to_label[i] for i in t) for t in mesh.groups[group]]
        canon = {}
        for r in rows:
            canon[min(rotations(r))] = r
        out = list(head)
        for h in head:
            del canon[min(rotations(h))]
        out += [canon[k] for k in sorted(canon)]
        return out

    return verts, table("alu", BAR_ALU_HEAD), table("dark", BAR_DARK_HEAD), seed


# --------------------------------------------------------------------------------------------
# The ORYX_B body: 1015 vertices; tables of 35, 52, 38 aluminium, 1142 and 126 dark, 20 and 20
# grey, 80 yellow triangles.

BX0, BX1 = -0.031847, 0.093353
BY0, BY1 = -0.013333, 0.0133
BZ_FRONT, BZ_BACK, BZ_HOUSING = 0.0065, -0.0165, -0.022997
B_R = 0.0133
B_XA, B_XB = BX0 + B_R, BX1 - B_R
B_LENS_X = (0.000753, 0.060753)
B_RING_R, B_GLASS_R = 0.0105, 0.0078
B_FIRST = [(0.0308, 0.0133, 0.000001), (0.058785, 0.0133, -0.00225)]

B_TARGETS = {"alluminiumTriangles": 35, "alluminiumTriangles2": 52, "alluminiumTriangles3": 38,
             "darkTriangles": 1142, "darkTriangles2": 126, "greyTriangles": 20,
             "greyTriangles2": 20, "yellowTriangles": 80}
B_VERTS = 1015
COUNT_NAMES = {"alluminiumTriangles": "ALLUMINIUM_TRIANGLE", "alluminiumTriangles2":
               "ALLUMINIUM_TRIANGLE_2", "alluminiumTriangles3": "ALLUMINIUM_TRIANGLE_3",
               "darkTriangles": "DARK_TRIANGLE", "darkTriangles2": "DARK_TRIANGLE_2",
               "greyTriangles": "GREY_TRIANGLE", "greyTriangles2": "GREY_TRIANGLE_2",
               "yellowTriangles": "YELLOW_TRIANGLE"}


def b_body(arc_pts, z_segs, lens_segs):
    m = Mesh()
    zs = [BZ_FRONT + (BZ_BACK - BZ_FRONT) * k / z_segs for k in range(z_segs + 1)]

    # Outline: left arc from top (90 deg) to bottom (270 deg) round x = B_XA, right arc from
    # bottom (-90 deg) to top (90 deg) round x = B_XB. The bottom is flattened to BY0.
    # Stretched along x so that the outermost points reach the ends of the body.
    stretch = 1.0 / max(abs(math.cos(math.radians(90 + 180.0 * i / (arc_pts - 1))))
                        for i in range(arc_pts))

    def arc_pts_of(xc, a0, a1):
        out = []
        for i in range(arc_pts):
            a = math.radians(a0 + (a1 - a0) * i / (arc_pts - 1))
            y = B_R * math.sin(a)
            y = max(y, BY0) if y < 0 else min(y, BY1)
            if abs(y + B_R) < 1e-12:
                y = BY0
            out.append((xc + B_R * stretch * math.cos(a), y))
        return out

    left = arc_pts_of(B_XA, 90, 270)
    right = arc_pts_of(B_XB, -90, 90)

    # Side bands, front to back.
    def band(points, group, xc):
        for s in range(z_segs):
            for i in range(len(points) - 1):
                (xa, ya), (xb, yb) = points[i], points[i + 1]
                a = m.v((xa, ya, zs[s]))
                b = m.v((xb, yb, zs[s]))
                c = m.v((xb, yb, zs[s + 1]))
                d = m.v((xa, ya, zs[s + 1]))
                out = ((xa + xb) / 2 - xc, (ya + yb) / 2, 0)
                m.tri(group, a, b, c, out)
                m.tri(group, a, c, d, out)

    band(left, "darkTriangles", B_XA)
    band(right, "darkTriangles", B_XB)
    band([(B_XA, BY1), (B_XB, BY1)], "alluminiumTriangles", 0)
    band([(B_XB, BY0), (B_XA, BY0)], "alluminiumTriangles3", 0)
    # Put the two fixed top points into the top plate.
    for p in B_FIRST:
        insert_point(m, "alluminiumTriangles", p)

    outline = left + right  # closed: left arc top->bottom, right arc bottom->top
    # Back plate: a fan round its centre, aluminium.
    centre = m.v(((B_XA + B_XB) / 2, 0.0, BZ_BACK))
    ids = [m.v((x, y, BZ_BACK)) for x, y in outline]
    for i in range(len(ids)):
        m.tri("alluminiumTriangles2", centre, ids[i], ids[(i + 1) % len(ids)], (0, 0, -1))

    # Lenses: yellow ring, grey glass (a fan round the centre).
    rings = []
    for li, lx in enumerate(B_LENS_X):
        ring = [m.v((lx + B_RING_R * math.cos(2 * math.pi * k / lens_segs),
                     B_RING_R * math.sin(2 * math.pi * k / lens_segs), BZ_FRONT))
                for k in range(lens_segs)]
        glass = [m.v((lx + B_GLASS_R * math.cos(2 * math.pi * k / lens_segs),
                      B_GLASS_R * math.sin(2 * math.pi * k / lens_segs), BZ_FRONT))
                 for k in range(lens_segs)]
        c = m.v((lx, 0.0, BZ_FRONT))
        for k in range(lens_segs):
            k1 = (k + 1) % lens_segs
            m.tri("yellowTriangles", ring[k], ring[k1], glass[k1], (0, 0, 1))
            m.tri("yellowTriangles", ring[k], glass[k1], glass[k], (0, 0, 1))
            m.tri("greyTriangles" if li == 0 else "greyTriangles2", c, glass[k], glass[k1],
                  (0, 0, 1))
        rings.append((lx, ring))

    # Front face round the lenses, dark.
    (lx0, ringL), (lx1, ringR) = rings
    front_ids = {p: m.v((p[0], p[1], BZ_FRONT)) for p in outline}
    r_top = max(ringR, key=lambda i: (m.verts[i][1], -m.verts[i][0]))
    r_bot = min(ringR, key=lambda i: (m.verts[i][1], m.verts[i][0]))
    r_left = [i for i in ringR if m.verts[i][0] < lx1 - 1e-9]
    left_outer = [front_ids[p] for p in left] + [r_top, r_bot] + r_left
    inner = angle_sorted(m, ringL, lx0, 0.0, -math.pi)
    outer = angle_sorted(m, list(dict.fromkeys(left_outer)), lx0, 0.0, -math.pi)
    for t in zip_loops(inner, outer, True):
        m.tri("darkTriangles", *t, (0, 0, 1))
    r_right = list(dict.fromkeys([i for i in ringR if m.verts[i][0] > lx1 + 1e-9] +
                                 [r_top, r_bot]))
    start = math.atan2(m.verts[r_bot][1], m.verts[r_bot][0] - lx1) - 1e-9
    inner = angle_sorted(m, r_right, lx1, 0.0, start)
    outer_ids = [front_ids[left[0]], front_ids[left[-1]]] + [front_ids[p] for p in right]
    outer = angle_sorted(m, outer_ids, lx1, 0.0, start - 0.3)
    for t in zip_loops(inner, outer, False):
        m.tri("darkTriangles", *t, (0, 0, 1))

    # Cable housing at the back, dark: a box open towards the back plate.
    hx0, hx1, hy0, hy1 = 0.010753, 0.050753, -0.008, 0.008
    hz0, hz1 = BZ_BACK, BZ_HOUSING
    hc = ((hx0 + hx1) / 2, 0.0, (hz0 + hz1) / 2)
    corners = lambda z: [m.v((hx0, hy0, z)), m.v((hx1, hy0, z)), m.v((hx1, hy1, z)),
                         m.v((hx0, hy1, z))]
    a, b = corners(hz0), corners(hz1)
    for k in range(4):
        k1 = (k + 1) % 4
        mid = m.centroid((a[k], a[k1], b[k1]))
        out = sub(mid, hc)
        m.tri("darkTriangles2", a[k], a[k1], b[k1], out)
        m.tri("darkTriangles2", a[k], b[k1], b[k], out)
    m.tri("darkTriangles2", b[0], b[1], b[2], (0, 0, -1))
    m.tri("darkTriangles2", b[0], b[2], b[3], (0, 0, -1))
    return m


def point_in_tri_xz(p, a, b, c):
    def s(p1, p2, p3):
        return (p1[0] - p3[0]) * (p2[2] - p3[2]) - (p2[0] - p3[0]) * (p1[2] - p3[2])
    d1, d2, d3 = s(p, a, b), s(p, b, c), s(p, c, a)
    neg = d1 < 0 or d2 < 0 or d3 < 0
    pos = d1 > 0 or d2 > 0 or d3 > 0
    return not (neg and pos)


def insert_point(m, group, p):
    tris = m.groups[group]
    for k, t in enumerate(tris):
        a, b, c = (m.verts[i] for i in t)
        if point_in_tri_xz(p, a, b, c):
            n = m.v(p)
            del tris[k]
            tris += [(t[0], t[1], n), (t[1], t[2], n), (t[2], t[0], n)]
            return
    raise ValueError("point outside the plate")


def tri_area(m, t):
    a, b, c = (m.verts[i] for i in t)
    n = cross(sub(b, a), sub(c, a))
    return math.sqrt(dot(n, n))


def split_centroid(m, group):
    """Splits the group's largest triangle at its centroid: two triangles and a vertex more."""
    tris = m.groups[group]
    k = max(range(len(tris)), key=lambda i: tri_area(m, tris[i]))
    t = tris.pop(k)
    n = m.v(m.centroid(t))
    tris += [(t[0], t[1], n), (t[1], t[2], n), (t[2], t[0], n)]


def split_edge(m, group):
    """Splits the largest triangle whose longest edge has no vertex at its midpoint yet: one
    triangle and one vertex more."""
    tris = m.groups[group]
    for k in sorted(range(len(tris)), key=lambda i: -tri_area(m, tris[i])):
        t = tris[k]
        e = max(range(3), key=lambda e: sum(
            x * x for x in sub(m.verts[t[e]], m.verts[t[(e + 1) % 3]])))
        a, b, c = t[e], t[(e + 1) % 3], t[(e + 2) % 3]
        pa, pb = m.verts[a], m.verts[b]
        mid = tuple(round((pa[i] + pb[i]) / 2, 6) for i in range(3))
        if mid in m.index:
            continue
        n = m.v(mid)
        tris.pop(k)
        tris += [(a, n, c), (n, b, c)]
        return
    raise SystemExit("no edge left to split in " + group)


def numbered_b():
    m = b_body(arc_pts=18, z_segs=10, lens_segs=20)
    dt = {g: B_TARGETS[g] - len(m.groups.get(g, [])) for g in B_TARGETS}
    dv = B_VERTS - len(m.verts)
    if any(d < 0 for d in dt.values()) or not (sum(dt.values()) / 2 <= dv <= sum(dt.values())):
        raise SystemExit("ORYX_B base mesh does not fit: %s, %d vertices to add" % (dt, dv))
    # Edge splits add a triangle and a vertex, centroid splits two triangles and a vertex.
    for g in sorted(dt, key=lambda g: -dt[g]):
        while dt[g] > 0:
            spare = sum(dt.values()) - (B_VERTS - len(m.verts))
            if spare > 0 and dt[g] >= 2:
                split_centroid(m, g)
                dt[g] -= 2
            else:
                split_edge(m, g)
                dt[g] -= 1
    assert len(m.verts) == B_VERTS, len(m.verts)
    # Fixed points first, then the others in order of creation.
    first = [m.index[tuple(round(c, 6) for c in p)] for p in B_FIRST]
    order = first + [i for i in range(len(m.verts)) if i not in first]
    label = {vid: k + 1 for k, vid in enumerate(order)}
    verts = [m.verts[i] for i in order]
    tables = {g: [tuple(label[i] for i in t) for t in m.groups[g]] for g in B_TARGETS}
    return verts, tables


# --------------------------------------------------------------------------------------------
# Output


def fmt(x):
    s = "%.6f" % x
    s = s.rstrip("0").rstrip(".") if "." in s else s
    if s in ("-0", ""):
        s = "0"
    return s + "f" if "." in s else s + ".0f"


def write_float_table(out, name, verts):
    out.append("float %s[%d] = {" % (name, 3 * len(verts)))
    for p in verts:
        out.append("    %s, %s, %s," % tuple(fmt(c) for c in p))
    out.append("};")


def write_int_table(out, name, rows):
    out.append("int %s[%d] = {" % (name, 3 * len(rows)))
    for k in range(0, len(rows), 6):
        out.append("    " + " ".join("%d, %d, %d," % r for r in rows[k:k + 6]))
    out.append("};")


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    outdir = sys.argv[1] if len(sys.argv) > 1 else os.path.join(here, "..", "..", "gl")
    bar_v, bar_alu, bar_dark, seed = numbered_bar()
    b_v, b_tables = numbered_b()

    bar_colours = {"ORYX_obj": (0.64, 0.64, 0.64), "ORYX_C_obj": (0.2, 0.2, 0.2)}
    b_order = ["alluminiumTriangles", "alluminiumTriangles2", "alluminiumTriangles3",
               "darkTriangles", "darkTriangles2", "greyTriangles", "greyTriangles2",
               "yellowTriangles"]

    h = ["// Generated by tools/mesh/gen_oryx3d.py; do not edit by hand.",
         "// Triangle meshes of the camera bodies: vertices in metres in the camera frame,",
         "// triangle tables of 1-based vertex numbers, counter-clockwise seen from outside.",
         "#pragma once", "", "#include <bw/geometry.hpp>", ""]
    c = ["// Generated by tools/mesh/gen_oryx3d.py; do not edit by hand.",
         "#include \"Oryx3D.h\"", ""]
    for ns in ("ORYX_obj", "ORYX_C_obj"):
        col = bar_colours[ns]
        h += ["namespace %s {" % ns,
              "constexpr int VERTEX_COUNT = %d;" % len(bar_v),
              "constexpr int ALLUMINIUM_TRIANGLE_COUNT = %d;" % len(bar_alu),
              "constexpr int DARK_TRIANGLE_COUNT = %d;" % len(bar_dark),
              "extern float vertices[%d];" % (3 * len(bar_v)),
              "extern int alluminiumTriangles[%d];" % (3 * len(bar_alu)),
              "extern int darkTriangles[%d];" % (3 * len(bar_dark)),
              "inline const bw::Vector3<float> ALLUMINIUM_COLOR(%sf, %sf, %sf);" % col,
              "inline const bw::Vector3<float> DARK_COLOR(0.0f, 0.0f, 0.0f);",
              "}  // namespace %s" % ns, ""]
        c += ["namespace %s {" % ns]
        write_float_table(c, "vertices", bar_v)
        write_int_table(c, "alluminiumTriangles", bar_alu)
        write_int_table(c, "darkTriangles", bar_dark)
        c += ["}  // namespace %s" % ns, ""]

    h += ["namespace ORYX_B_obj {", "constexpr int VERTEX_COUNT = %d;" % len(b_v)]
    for g in b_order:
        h.append("constexpr int %s_COUNT = %d;" % (COUNT_NAMES[g], len(b_tables[g])))
    h.append("extern float vertices[%d];" % (3 * len(b_v)))
    for g in b_order:
        h.append("extern int %s[%d];" % (g, 3 * len(b_tables[g])))
    h += ["inline const bw::Vector3<float> ALLUMINIUM_COLOR(0.79f, 0.82f, 0.93f);",
          "inline const bw::Vector3<float> DARK_COLOR(0.0f, 0.0f, 0.0f);",
          "inline const bw::Vector3<float> LENS_COLOR(0.22f, 0.22f, 0.22f);",
          "inline const bw::Vector3<float> YELLOW_COLOR(1.0f, 1.0f, 0.0f);",
          "}  // namespace ORYX_B_obj", ""]
    c += ["namespace ORYX_B_obj {"]
    write_float_table(c, "vertices", b_v)
    for g in b_order:
        write_int_table(c, g, b_tables[g])
    c += ["}  // namespace ORYX_B_obj", ""]

    with open(os.path.join(outdir, "Oryx3D.h"), "w") as f:
        f.write("\n".join(h))
    with open(os.path.join(outdir, "Oryx3D.cpp"), "w") as f:
        f.write("\n".join(c))
    print("bar body numbering seed %d; ORYX_B %d vertices" % (seed, len(b_v)))


if __name__ == "__main__":
    main()
