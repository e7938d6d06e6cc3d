# SPDX-License-Identifier: Apache-2.0
# codefilter: arguments, library files, checking, messages.
use strict;
use warnings;
use File::Path 'make_path';
use File::Temp 'tempdir';
use FindBin;
use lib $FindBin::Bin;
use POSIX ();
use ScriptTest 'line_map';
use Test::More;

my $filter = "$FindBin::Bin/../../installation/mray/bin/codefilter";
my $dir = tempdir(CLEANUP => 1);
make_path("$dir/lib/glsl", "$dir/scratch", "$dir/fake");
$ENV{TAVRN_LIB} = "$dir/lib";
my $base = "$dir/scratch/demo";

sub put {
	my ($name, $text) = @_;
	open my $file, '>:raw', "$dir/$name" or die "$name: $!";
	print $file $text;
	close $file;
	return "$dir/$name";
}

sub get {
	my ($path) = @_;
	open my $file, '<:raw', $path or return undef;
	local $/;
	return <$file> // '';
}

my ($status, $err, $source);
sub run_on {
	my ($path) = @_;
	my $pid = fork;
	if (!$pid) {
		open STDIN, '<', $path or die "$path: $!";
		open STDERR, '>', "$dir/err" or die;
		open STDOUT, '>', "$dir/out" or die;
		exec $filter, 'demo', $base;
	}
	waitpid $pid, 0;
	$status = $? & 127 ? 'signal' : $? >> 8;
	($err, $source) = (get("$dir/err"), get($base));
	return $status;
}

sub run { run_on(put('in', $_[0])) }

# The same with the map of its lines beside it, or with another map.
sub run_mapped {
	my ($code, $map) = @_;
	put('scratch/linemap', $map // line_map($code));
	run($code);
	unlink "$dir/scratch/linemap";
	return $status;
}

sub wait_for {
	my ($test) = @_;
	for (1 .. 3000) {
		return 1 if $test->();
		select undef, undef, undef, 0.01;
	}
	return 0;
}

# A process that nobody has waited for has ended all the same.
sub ended {
	my ($pid) = @_;
	return !kill(0, $pid) || (get("/proc/$pid/stat") // '') =~ /\) Z /;
}

# The pieces of a code file.
sub arg {
	my ($name, $type, $value, %more) = @_;
	return "ArgName $name\n{\n"
		. join('', map { sprintf "    %-11s %s\n", @$_ } ['Stow', 0], ['Lock', 0], ['Pin', 0],
			['BoxTitle', $more{box} // 'Noise'], ['ButtonTitle', $more{button} // 'scale'],
			['Comments', $more{comment} // ''], [$type, $value],
			$more{range} ? ['MinMax', $more{range}] : ())
		. "}\n\n";
}

sub section {
	my ($help, @args) = @_;
	return "Help\n{\n" . join('', map { ">$_\n" } @$help) . "}\n\n" . join('', @args) . "EndArginfo\n";
}

sub shader {
	my ($top, @body) = @_;
	return join '', map { "$_\n" } '#version 330 core', @$top, 'out vec4 tvColor;', '//@arguments',
		'void main()', '{', '    float Noise_1_result;', '    ', '    // Noise_1', @body, '}';
}

my @good = ('    Noise_1_result = 0.5;', '    tvColor = vec4(Noise_1_result);');

# ---- a shader without arguments

is(run(section([]) . shader([], @good)), 0, 'a plain shader');
is($err, '', 'without a word');
is(get("$dir/out"), '', 'and nothing on standard output');
like($source, qr{^#version 330 core\nout vec4 tvColor;\nvoid main}, 'the marker is gone');
is(unpack('V', get("$base.spv") // ''), 0x07230203, 'the compiled shader is there');
is_deeply([sort map { s{.*/}{}r } glob "$dir/scratch/*"], ['demo', 'demo.spv'], 'and nothing else');

# ---- declarations

is(run(section(['x'],
	arg('Ks', 'float', '0.5', range => '0.000000 1.000000', comment => 'weight of the gloss'),
	arg('tint', 'rgb', 'vec3(0.5, 0.2, 0.1)'),
	arg('place', 'xyz', 'vec3(0, 1, 0)', range => '-10.000000 10.000000'),
	arg('paint', 'rgba', 'vec4(1, 1, 1, 1)', comment => 'with coverage'),
	arg('cells', 'generic', 'vec2(2.0, 3.0)'),
	arg('turn', 'generic', 'mat2(1.0)'),
	arg('many', 'generic', '-2.5e1')) . shader([], @good)), 0, 'arguments of all types');
is($err, '', 'without a word');
is($source =~ s/void main.*//sr, <<'END_DECL', 'their declarations');
#version 330 core
out vec4 tvColor;
uniform float Ks = 0.5; // weight of the gloss  [0 1]
uniform vec3 tint = vec3(0.5, 0.2, 0.1);
uniform vec3 place = vec3(0, 1, 0); // [-10 10]
uniform vec4 paint = vec4(1, 1, 1, 1); // with coverage
uniform vec2 cells = vec2(2.0, 3.0);
uniform mat2 turn = mat2(1.0);
uniform float many = -2.5e1;
END_DECL

is(run(section([], arg('Ks', 'float', '0.5', comment => 'ends badly \\'), arg('Kd', 'float', '1.0'))
	. shader([], '    Noise_1_result = Ks * Kd;')), 0, 'a remark that ends in a backslash');
like($source, qr{^uniform float Ks = 0\.5; // ends badly\nuniform float Kd}m, 'does not swallow the next line');
is(run(section([], arg('Ks', 'float', '0.5', comment => "two\nlines of it") ) . shader([], @good)), 0,
	'a remark of two lines');
like($source, qr{^uniform float Ks = 0\.5; // two lines of it$}m, 'stands on one');

# ---- duplicates

is(run(section([], arg('Ks', 'float', '0.5', box => 'Plastic', button => 'gloss'),
	arg('Ks', 'float', '0.7', box => 'Metal', button => 'shine')) . shader([], @good)), 0, 'an argument given twice');
is(() = $source =~ /\bKs\b/g, 1, 'is declared once');
like($source, qr{Ks = 0\.5;}, 'with the first value');
like($err, qr{^demo: warning: .*'Ks'.*box Plastic, button gloss.*box Metal, button shine}, 'and a warning names both');
is(run(section([], arg('Ks', 'rgb', 'vec3(1.0)'), arg('Ks', 'xyz', 'vec3(0.0)')) . shader([], @good)), 0,
	'two types of the system that are one in the shader');
is(run(section([], arg('Ks', 'float', '0.5', box => 'Plastic', button => 'gloss'),
	arg('Ks', 'rgb', 'vec3(1.0)', box => 'Metal', button => 'shine')) . shader([], @good)), 1, 'two types');
like($err, qr{^demo: .*'Ks' is a float in box Plastic, button gloss but a vec3 in box Metal, button shine}, 'name both boxes');

# ---- names and values that cannot be

for my $case (['float', 'a word of GLSL'], ['sample', 'a word of GLSL'], ['mix', 'a function of GLSL'],
		['main', 'a word of GLSL'], ['gl_Ks', 'belong'], ['tvEye', 'belong'], ['mrNoise', 'belong'],
		['a__b', 'belong'], ['2nd', 'no name'], ['my arg', 'no name'], ['Ks;', 'no name'], ["K\xe4", 'no name'],
		['', 'no name'], ['Noise_1_result', 'name of a wire']) {
	my ($name, $why) = @$case;
	is(run(section([], arg($name, 'float', '1.0', box => 'Brick', button => 'rows')) . shader([], @good)), 1,
		"an argument named '$name'");
	like($err, qr{^demo: box Brick, button rows: .*$why[^\n]*\n\z}, 'is refused once, with box and button');
}
is(run(section([], arg('tvist', 'float', '1.0'), arg('mraky', 'float', '1.0')) . shader([], @good)), 0,
	'names that only look like the system\'s');
is(run(section([], arg('kind', 'string', '"a"', box => 'Mix', button => 'mode')) . shader([], @good)), 1, 'a string');
like($err, qr{box Mix, button mode: a string cannot be an argument}, 'is refused with box and button');
is(run(section([], arg('where', 'generic', 'tvUV', box => 'Brick', button => 'uv')) . shader([], @good)), 1,
	'a generic value of unknown type');
like($err, qr{box Brick, button uv: .*'tvUV'}, 'is refused with box and button');
is(run(section([], arg('Ks', 'float', '')) . shader([], @good)), 1, 'no value');
like($err, qr{box Noise, button scale: .*no value}, 'is refused');
is(run(section([], arg('float', 'float', '1.0'), arg('gl_x', 'float', '1.0')) . shader([], @good)), 1, 'two faults');
is(() = $err =~ /\n/g, 2, 'are told in one go');
is(run(section([], arg('Ks', 'float', '1.0')) . shader([], @good) =~ s/\/\/\@arguments\n//r), 1, 'arguments without a marker');
like($err, qr{\@arguments}, 'are an error');

# ---- library files

put('lib/glsl/low.glsl', "// low\nfloat low(float x) { return x; }\n");
put('lib/glsl/mid.glsl', "//\@use low\r\nfloat mid(float x) { return low(x); }\r\n");
put('lib/glsl/high.glsl', "//\@use low\n//\@use mid\nfloat high(float x) { return mid(low(x)); }");
is(run(section([]) . shader(['//@use high', '//@use low', '//@use high'], '    tvColor = vec4(high(1.0));')), 0,
	'files that use each other');
like($source, qr{// low.*float low.*float mid.*float high}s, 'come in order');
is(() = $source =~ /float low\(/g, 1, 'and each once');
unlike($source, qr{\@use|\r}, 'with nothing left over');
is(run(section([]) . shader(['//@use none'], @good)), 1, 'a file that is not there');
like($err, qr{^demo: //\@use none: .*glsl/none\.glsl: No such file}, 'is named');
put('lib/glsl/broken.glsl', "//\@use none\n");
is(run(section([]) . shader(['//@use broken'], @good)), 1, 'a file that uses one that is not there');
like($err, qr{//\@use none in glsl/broken\.glsl}, 'tells who wants it');
put('lib/glsl/c1.glsl', "//\@use c2\n");
put('lib/glsl/c2.glsl', "//\@use c1\n");
is(run(section([]) . shader(['//@use c1'], @good)), 1, 'a circle');
like($err, qr{circle: c1 -> c2 -> c1}, 'is shown');
is(run(section([]) . shader(['//@use ../glsl/low'], @good)), 1, 'a path');
like($err, qr{expected the name}, 'is refused');
make_path("$dir/lib/glsl/dir.glsl");
is(run(section([]) . shader(['//@use dir'], @good)), 1, 'a directory');
like($err, qr{//\@use dir}, 'is refused');

# ---- the types of shader

# Writes the render options; no words take them away.
sub choose {
	my ($type) = @_;
	delete $ENV{TAVRN_RENOPTS};
	$ENV{TAVRN_RENOPTS} = put('options', "setenv MRAY_SIZE \"320,240\"\r\nsetenv TAVRN_SHADER_TYPE \"$type\"\r\n")
		if defined $type;
}

sub files { join ' ', map { s{.*/}{}r } glob "$dir/scratch/*" }

put('lib/glsl/scene.glsl', "in vec3 tvPlace;\nuniform vec4 tvLamp[2];\nout vec4 tvColor;\n"
	. "vec3 tvShine(vec3 n) { return n * tvLamp[0].xyz; }\n");
put('lib/glsl/helper.glsl', "// The helper of helpers.\nconst float LIMIT = 2.0;\nstruct Pair { float a; float b; };\n"
	. "#define TWICE(x) ((x) * 2.0)\nfloat helper(float x)\n{\n    Pair pair = Pair(x, LIMIT);\n"
	. "    return min(pair.a, TWICE(pair.b)); // helper\n}\nvec3 mrSeen(\n    in vec3 p,\n    in float amount)\n"
	. "{\n    return p * helper(amount);\n}\nfloat first(\n    float Ks[1])\n{\n    return Ks[0];\n}\n");
my $scene = join "\n", '#version 330 core', '// Shader demo', '//@prelude scene', '//@arguments', '//@use helper',
	'void main()', '{', '    tvColor = vec4(0.0, 0.0, 0.0, 1.0);', '    float Noise_1_result;', '    ', '    // Noise_1',
	'    {', '        float mr_x = helper(Ks);', '        Noise_1_result = mr_x;', '    }', '    ', '    // Metal_2',
	'    if (Noise_1_result < 0.0)', '        return;',
	'    tvColor = vec4(tvShine(mrSeen(tvPlace, Noise_1_result)) * tint, 1.0);', '}', '';
my @knobs = (arg('Ks', 'float', '0.500000', range => '0.000000 1.000000', comment => 'weight of the gloss'),
	arg('tint', 'rgb', 'vec3(0.5, 0.2, 0.1)'));

choose('surface');
is(run(section([], @knobs) . $scene), 0, 'a surface shader');
is($err, '', 'without a word');
like($source, qr{^#version 330 core\n.*^in vec3 tvPlace;.*^uniform float Ks = .*^void main\(\)}ms, 'is whole');
is(files(), 'demo demo.spv', 'and all there is');
my $surface = $source;
choose(undef);
run(section([], @knobs) . $scene);
is($source, $surface, 'it is what comes if nothing is chosen');
choose('');
run(section([], @knobs) . $scene);
is($source, $surface, 'or if nothing is what is chosen');

choose('module');
is(run(section(['A metal.', '*/'], @knobs) . ($scene =~ s{^// Shader.*\n}{$&/*\n@{['*' x 72]}\nA metal.\n*/\n@{['*' x 72]}\n*/\n}mr)), 0,
	'a module');
is($err, '', 'without a word');
is(files(), 'demo demo.frag demo.spv', 'has a whole shader beside it');
is(unpack('V', get("$base.spv") // ''), 0x07230203, 'which is compiled');
like($source, qr{^#ifndef TAVRN_MODULE_demo\n#define TAVRN_MODULE_demo\n/\*\n}, 'it guards itself and begins with the help text');
like($source, qr{^A metal\.\n\* /$}m, 'which cannot end its comment');
like($source, qr{^#endif // TAVRN_MODULE_demo\n\z}m, 'ends with its guard');
unlike($source, qr{\bmain\b|^\s*(?:uniform|in|out)\s[^()]*;|#version|Shader demo}m, 'has no main and nothing of the outside');
like($source, qr{^vec4 demo\(\n    float Ks, // = 0\.500000  \[0 1\]  weight of the gloss\n    vec3 tint // = vec3\(0\.5, 0\.2, 0\.1\)\n\)\n\{\n}m,
	'its function has the arguments as parameters, with their defaults');
like($source, qr{^    vec4 tvColor;\n    tvColor = vec4\(0\.0.*^    return tvColor;\n\}\n}ms, 'and gives the colour');
like($source, qr{< 0\.0\)\n        return tvColor;\n}, 'wherever the statements leave it');
like($source, qr{^//   tvPlace tvShine\(\)$}m, 'it tells what it wants of the renderer');
like($source, qr{demo_LIMIT = 2\.0.*struct demo_Pair.*define demo_TWICE\(x\).*float demo_helper\(float x\).*vec3 demo_mrSeen\(\n    in vec3 p}s,
	'what it defines bears its name');
like($source, qr{demo_Pair pair = demo_Pair\(x, demo_LIMIT\);\n    return min\(pair\.a, demo_TWICE\(pair\.b\)\);},
	'wherever it is used');
like($source, qr{^        float mr_x = demo_helper\(Ks\);$}m, 'in the function too, with what it is indented by');
my ($module, $complete) = ($source, get("$base.frag"));
like($complete, qr{^#version 330 core\n.*in vec3 tvPlace;.*\Q$module\E.*void main\(\)\n\{\n    tvColor = demo\(0\.500000, vec3\(0\.5, 0\.2, 0\.1\)\);\n\}\n\z}s,
	'the whole shader holds the module as it is, and calls it with the defaults');
unlike($complete, qr{\bKs = }, 'without declaring the arguments');

{
	# Two modules, the same functions in both, in one shader; one of them twice.
	my $first = $base;
	$base = "$dir/scratch/other";
	my $other = $module =~ s/\bdemo(_|\b)/other$1/gr =~ s/MODULE_demo/MODULE_other/gr;
	put('both.frag', "#version 330 core\n" . get("$dir/lib/glsl/scene.glsl") . $module . $other . $module
		. "void main() { tvColor = demo(0.5, vec3(1.0)) + other(0.1, vec3(0.0)); }\n");
	is(system("glslangValidator -S frag $dir/both.frag >$dir/out 2>&1"), 0, 'modules can stand side by side')
		or diag get("$dir/out");
	$base = $first;
}

is(run(section([]) . ($scene =~ s/Ks/1.0/r =~ s/tint/1.0/r)), 0, 'a module without arguments');
like($source, qr{^vec4 demo\(\)\n\{}m, 'has a function without parameters');
is(run(section([], @knobs, $knobs[0]) . $scene), 0, 'an argument that two boxes share');
is(() = $source =~ /float Ks,/g, 1, 'is one parameter');

choose('surface');
run(section([], @knobs) . $scene);
is(files(), 'demo demo.spv', 'back to a surface, the whole shader of the module is gone');

choose('module');
is(run_mapped(section([], @knobs) . ($scene =~ s/mr_x = helper/mr_x = nowhere/r)), 1, 'a fault in a module');
my @lines = split /\n/, $source;
like($err, qr{^demo: line (\d+) \(box Noise_1, operator Noise, /operators/Noise line \d+\): 'nowhere'}m, 'is placed at its box');
$err =~ /line (\d+)/;
like($lines[$1 - 1], qr/nowhere/, 'and its line in the module');
ok(!-e "$base.spv", 'and leaves nothing compiled');
is(run(section([], arg('Ks', 'float', 'vec2(1.0)', box => 'Mix', button => 'amount'), $knobs[1]) . $scene), 1,
	'a default that does not fit');
like($err, qr{^demo: line \d+ of demo\.frag: }m, 'is placed in the whole shader');
is(run(section([], arg('helper', 'float', '1.0')) . $scene), 1, 'an argument named like a function');
like($err, qr{'helper'.*name of its own}, 'is refused');
is(run(section([], @knobs) . ($scene =~ s{//\@use}{uniform float mine;\n//\@use}r)), 1, 'a uniform of a box');
like($err, qr{^demo: a module cannot have 'uniform float mine' of its own}, 'is refused');
is(run(section([]) . "#version 330 core\nfloat x;\n"), 1, 'no main');
like($err, qr{no void main}, 'is told');
is(run(section([], @knobs) . ($scene =~ s/\}\n\z//r)), 1, 'a main that does not end');
like($err, qr{no closing brace}, 'is told');
is(run(section([], @knobs) . ($scene =~ s/void main\(\)\n\{/void main() {/r)), 0, 'a brace on the line of main') or diag $err;
is(run(section([], @knobs) . ($scene =~ s/core/core\n#extension GL_ARB_gpu_shader5 : enable/r)), 0, 'an extension');
like($source, qr{^// It needs: #extension GL_ARB_gpu_shader5 : enable$}m, 'is asked for');
unlike($source, qr{^#extension}m, 'but cannot stand in the middle of a shader');
like(get("$base.frag"), qr{^#version 330 core\n#extension}, 'and stands at the head of the whole one');

for my $case (['my-shader', 'my_shader'], ['2nd', 'shader_2nd'], ['mix', 'shader_mix'], ['mrNoise', 'shader_mrNoise'],
		['a__b-', 'a_b'], ["\xc3\xa9", 'shader']) {
	my ($called, $function) = @$case;
	my $pid = fork;
	if (!$pid) {
		open STDIN, '<', put('in', section([], @knobs) . $scene) or die;
		open STDERR, '>', "$dir/err" or die;
		exec $filter, $called, "$dir/scratch/named";
	}
	waitpid $pid, 0;
	is($?, 0, "a module of the name $called") or diag get("$dir/err");
	like(get("$dir/scratch/named"), qr{^vec4 $function\($}m, "has the function $function");
}

choose('volume');
is(run(section([]) . shader([], @good)), 1, 'a type of shader that there is not');
like($err, qr{^demo: there is no shader type 'volume': it can be surface or module$}, 'is told');
$ENV{TAVRN_RENOPTS} = "$dir/none";
is(run(section([]) . shader([], @good)), 1, 'render options that cannot be read');
like($err, qr{^demo: cannot read the render options \Q$dir\E/none: No such file}, 'are told');
choose(undef);
unlink glob "$dir/scratch/*";

# ---- errors of the check

is(run_mapped(section([]) . shader([], '    Noise_1_result = foo;', '    ', '    // Clear Coat_12',
	'    tvColor = vec4(bar);')), 1, 'a faulty shader');
like($err, qr{^demo: line 8 \(box Noise_1, operator Noise, /operators/Noise line 1\): 'foo' : undeclared identifier$}m, 'the box of the first error');
like($err, qr{^demo: line 11 \(box Clear Coat_12, operator Clear Coat, /operators/Clear Coat line 1\): 'bar' : undeclared identifier$}m, 'and of the second');
unlike($err, qr{terminated|compilation errors|ERROR|\Q$dir\E}, 'and nothing that helps nobody');
ok(-e $base, 'the source is there to look at');
ok(!-e "$base.spv", 'a compiled shader is not');
put('lib/glsl/wrong.glsl', "\nfloat wrong() { return nowhere; }\n");
is(run(section([]) . shader(['//@use wrong'], '    tvColor = vec4(wrong());')), 1, 'a fault in a library file');
like($err, qr{^demo: line 3 \(glsl/wrong\.glsl line 2\): 'nowhere'}m, 'is placed in that file');
is(run(section([], arg('Ks', 'float', 'vec3(1.0)', box => 'Mix', button => 'amount')) . shader([], @good)), 1,
	'a value that does not fit');
like($err, qr{line 3 \(box Mix, button amount\): }, 'is placed at its button');
is(run_mapped(section([]) . shader([], '    tvColor = vec4(1.0) +;')), 1, 'a syntax error');
like($err, qr{^demo: line 8 \(box Noise_1, operator Noise, /operators/Noise line 1\): syntax error}m, 'is placed at its box');
is(run(section([]) . shader([], @good, '    }')), 1, 'one brace too many');
like($err, qr{^demo: line \d+}m, 'is told');
is(run(section([]) . shader(['float early() { return oops; }'], @good)), 1, 'a fault before main');
like($err, qr{^demo: line 2: 'oops'}m, 'has no box');

# ---- the source alone

unlink glob "$dir/scratch/*";
$ENV{TAVRN_SOURCEONLY} = 1;
is(run_mapped(section([]) . shader([], '    Noise_1_result = foo;')), 0, 'a faulty source that is only to be looked at');
is($err, '', 'is none');
is_deeply([sort map { s{.*/}{}r } glob "$dir/scratch/*"], ['demo', 'demo.linemap'], 'the source is there, with its map');
{
	local $ENV{TAVRN_RENOPTS} = put('module_options', qq{setenv TAVRN_SHADER_TYPE "module"\r\n});
	my $code = section([]) . shader([], '    Noise_1_result = foo;');
	$code =~ s/^out .*\n//m;
	is(run_mapped($code), 0, 'the same as a module');
	my @lines = split /\n/, $source;
	my ($at) = grep { $lines[$_] =~ /Noise_1_result = foo;/ } 0 .. $#lines;
	my @runs = (get("$base.linemap") // '') =~ /^line (\d+ \d+) 1 main-body/mg;
	my ($run) = grep { my ($first, $count) = split; $first <= $at + 1 && $at + 1 < $first + $count } @runs;
	ok($run, 'the map of a module tells of the module, not of what would be compiled') or diag "line $at of @runs";
}
delete $ENV{TAVRN_SOURCEONLY};
unlink glob "$dir/scratch/*";

# ---- the map of lines

my $faulty = section([], arg('Ks', 'float', '0.5', box => 'Mix', button => 'amount'))
	. shader(['//@use wrong', 'float ok() { return 1.0; }'], '    Noise_1_result = foo;', '    tvColor = vec4(wrong() * Ks);');
is(run_mapped($faulty), 1, 'a fault in a box and one in a library file');
like($err, qr{^demo: line 13 \(box Noise_1, operator Noise, /operators/Noise line 1\): 'foo'}m,
	'lines of other files that are put in shift the box');
like($err, qr{^demo: line 3 \(glsl/wrong\.glsl line 2\): 'nowhere'}m, 'and have places of their own');
is(get("$base.linemap"), <<"END_MAP", 'the map of the made source is left for those who compile it later');
#source lines 1
box 1 Noise
box 7 Mix
file /operators/Noise
file /operators/Mix
file $dir/lib/glsl/wrong.glsl
line 1 1 0 main-body 0 0
line 2 2 0 global-open 3 1
line 5 2 0 main-body 0 0
argument 7 1 2 amount
line 8 4 0 main-body 0 0
line 12 1 1 main-body 0 0
line 13 2 1 main-body 1 1
line 15 1 0 main-body 0 0
END_MAP
$ENV{TAVRN_LIB} = '/operators';
is(run_mapped(section([]) . shader([], '    Noise_1_result = foo;')), 1, 'a file of the library');
like($err, qr{^demo: line 8 \(box Noise_1, operator Noise, Noise line 1\): 'foo'}m, 'is told as it is called there');
$ENV{TAVRN_LIB} = "$dir/lib";
is(run_mapped(section([], arg('Ks', 'float', '', box => 'Mix', button => 'amount')) . shader([], @good)), 1, 'an argument');
like($err, qr{^demo: box Mix_7, button amount: argument 'Ks' has no value$}m, 'is told with the number of its box');
is(run_mapped(section([], arg('Ks', 'float', 'vec3(1.0)', box => 'Mix', button => 'amount')) . shader([], @good)), 1,
	'and where it is compiled');
like($err, qr{^demo: line 3 \(box Mix_7, button amount\): }m, 'as well');
{
	my $code = section([]) . shader([], '    Noise_1_result = foo;');
	my $map = line_map($code);
	my $lines = () = $code =~ /\n/g;
	my $nothing = qr{so boxes cannot be named\n};
	for my $case (['', 'line 1 is not "#source lines 1"'], ["else\n", 'line 1 is not "#source lines 1"'],
			["$map\0\xff\n", 'line \d+ is none of a map of lines, or does not fit those before it'],
			[$map . "line 9 1 1 main-body 1 1\n", 'line \d+ is none of a map'],
			[$map =~ s/^line 9 1 /line 9 99999999999999999999 /mr, 'line \d+ is none of a map'],
			[$map =~ s/^line 9 1 /line 9 -1 /mr, 'line \d+ is none of a map'],
			[$map =~ s/main-body 1 1$/main-body 2 1/mr, 'line \d+ is none of a map'],
			[$map =~ s/^line 14 1 1 /line 14 1 2 /mr, 'line \d+ is none of a map'],
			[$map . 'line ' . ($lines + 1) . " 7 0 main-body 0 0\n", 'it is of a source of ' . ($lines + 7) . " lines, and this one has $lines"],
			[$map =~ s/.*\n\z//r, 'it is of a source of ' . ($lines - 1) . " lines, and this one has $lines"]) {
		my ($text, $why) = @$case;
		is(run_mapped($code, $text), 1, "a map that is of no use: $why");
		like($err, qr{^demo: warning: \Q$dir\E/scratch/linemap: $why.*, $nothing}m, 'is told');
		like($err, qr{^demo: line 8: 'foo' : undeclared identifier$}m, 'and the place is told by its line');
		ok(!-e "$base.linemap", 'and nobody gets another map');
	}
	mkdir "$dir/scratch/linemap";
	run($code);
	like($err, qr{^demo: warning: \Q$dir\E/scratch/linemap: it is no file, $nothing}m, 'nor a directory');
	rmdir "$dir/scratch/linemap";
	is(run_mapped($code, $map =~ s/^box 1 Noise$/box 1 \e[31mN\to) ise/mr =~ s{^file .*}{file /a\x07 b}mr), 1, 'hostile names');
	like($err, qr{^demo: line 8 \(box  \[31mN o\) ise_1, operator  \[31mN o\) ise, /a  b line 1\): 'foo'}m,
		'come without what a terminal would heed');
	is(run_mapped($code, $map =~ s/^line (\d+) 1 1 main-body 1 1$/output $1 1 main-header scale/mr), 1, 'the line of an output');
	like($err, qr{^demo: line 8 \(box Noise_1, output scale\): 'foo'}m, 'tells that');
}

# ---- the help text

my @help = ("\tA shader", 'ends */ here', '*' x 72, '*/', '//@use none', '//@arguments', '#version 100', '{', '}', '');
my $banner = join '', map { "$_\n" } '#version 330 core', '/*', '*' x 72, @help, '*' x 72, '*/';
is(run(section(\@help) . (shader([], @good) =~ s/^#version.*\n/$banner/r)), 0, 'a help text of mean lines');
is($err, '', 'does no harm');
like($source, qr{ends \* / here}, 'and cannot end its comment');
is(run(section(["one\r", "two\r"]) =~ s/\n/\r\n/gr . shader([], @good) =~ s/\n/\r\n/gr), 0, 'CR LF line ends');
is($err, '', 'are taken');
unlike($source, qr{\r}, 'and not passed on');

# ---- cut and hostile input

my $whole = section(['help'], arg('Ks', 'float', '0.5', range => '0 1')) . shader([], @good);
my $info = index $whole, 'EndArginfo';
for my $at (0, 3, 8, 12, 16, 20, 25, 40, 120, $info - 1, $info + 4) {
	is(run(substr $whole, 0, $at), 1, "input cut after $at bytes");
	like($err, qr{^demo: .*arginfo section}, 'is told');
}
is(run(substr $whole, 0, $info + 11), 1, 'no source behind the section');
like($err, qr{no generated source}, 'is told');
is(run($whole =~ s/Pin  /Pon  /r), 1, 'an unknown line');
like($err, qr{damaged in line \d+}, 'is told with its line');
is(run(join '', map { chr(($_ * 7919) % 256) } 1 .. 5000), 1, 'binary noise');
like($err, qr{^demo: [ -~]+\n\z}, 'gives one clean line');
is(run_on('/dev/null'), 1, 'no input');
is(run_on($dir), 1, 'a directory as input');
is(system("$filter demo 2>$dir/err </dev/null") >> 8, 2, 'a missing word');

{
	my $keep = $base;
	$base = "$dir/none/demo";
	is(run(section([]) . shader([], @good)), 1, 'a place that cannot be written');
	like($err, qr{^demo: \Q$base\E: No such file}, 'is named');
	$base = "$dir/taken/demo";
	make_path($base);
	is(run(section([]) . shader([], @good)), 1, 'a place that is taken by a directory');
	like($err, qr{^demo: \Q$base\E: Is a directory}, 'is named');
	is_deeply([map { s{.*/}{}r } glob "$dir/taken/*"], ['demo'], 'and no half file is left');
	$base = $keep;
}

# ---- the functions of the library

{
	my $mray = "$FindBin::Bin/../../installation/mray";
	local $ENV{TAVRN_LIB} = $mray;
	my @files = grep { $_ ne 'surface' } map { m{([^/]+)\.glsl$} } glob "$mray/glsl/*.glsl";
	cmp_ok(scalar @files, '>', 5, 'the library has its functions');
	for my $file (@files) {
		for my $type (qw(surface module)) {
			choose($type);
			is(run(section([]) . join "\n", '#version 330 core', '//@prelude surface', "//\@use $file",
				'void main()', '{', 'tvColor = vec4(1.0);', '}'), 0, "glsl/$file.glsl in a $type") or diag $err;
		}
	}
}

choose(undef);
unlink "$base.frag";

# ---- other files

# A compiler opens what #include names before it complains, and quotes from it. Values bring any text into a shader.
{
	put('secret.txt', "zebracorn zebracorn\n");
	POSIX::mkfifo("$dir/pipe", 0600) or die "$dir/pipe: $!";
	my $asks = '#extension GL_GOOGLE_include_directive : enable';
	my @ways = (
		"#include \"../secret.txt\"",
		"$asks\n#include \"../secret.txt\"",
		"$asks\n  #  include\t<../secret.txt>",
		"# /* in\nbetween */ include \"../secret.txt\"",
		"#/**/include \"../secret.txt\"",
		"#inc\\\nlude \"../secret.txt\"",
		"#\\\ninclude \"../secret.txt\"",
		"#/\\\n*x*\\\n/include \"../secret.txt\"",
		"// a comment that ends here \\\n#include \"../secret.txt\"",
		"\"/*\"\n#include \"../secret.txt\"\n// */",
		"/* */ #include \"../secret.txt\"",
		"\r#include \"../secret.txt\"",
		"#\x0b\x0cinclude \"../secret.txt\"",
		"#include \"../pipe\"",
		"#if 0\n#include \"../pipe\"\n#endif",
		"#extension all : warn\n#include \"../secret.txt\"",
		"#include_next \"../secret.txt\"",
	);
	put('lib/glsl/given.glsl', "out vec4 tvColor;\n");
	for my $way (@ways) {
		for my $type (qw(surface module)) {
			choose($type);
			(my $shown = $way) =~ s/([^ -~])/sprintf '\\x%02x', ord $1/ge;
			my $text = shader([], "    tvColor = vec4(1.0);\n$way\n") =~ s{^out vec4 tvColor;}{//\@prelude given}mr;
			is(run(section([]) . $text), 1, "$type: $shown");
			like($err, qr{line \d+.*: #include is refused}, 'is refused by name');
			unlike($err, qr{zebracorn|secret}, 'and nothing of the file is told');
			ok(!-e "$base.spv", 'nor compiled');
		}
	}
	choose(undef);
	unlink "$base.frag";
	is(run_mapped(section([]) . shader([], "#extension GL_ARB_shading_language_include : require")), 1,
		'an extension for it');
	like($err, qr{^demo: line 8 \(box Noise_1, operator Noise, /operators/Noise line 1\): #extension GL_ARB_shading_language_include is refused}m,
		'is refused with its box');
	my $words = join '', map { "$_\n" } '#version 330 core', '/*', '*' x 72, 'Use it by #include "demo"', '*' x 72, '*/';
	is(run(section(['Use it by #include "demo"']) . (shader([], @good) =~ s/^#version.*\n/$words/r)), 0,
		'a help text may speak of it') or diag $err;
	is(run(section([]) . shader([], '#extension GL_ARB_gpu_shader5 : enable', @good)), 0, 'other extensions pass')
		or diag $err;
	is(run(section([]) . shader([], '#line 7 "../secret.txt"', @good)), 1, 'names in #line');
	unlike($err, qr{zebracorn}, 'are only names');
}

# Names that the compiler takes for its configuration.
{
	my $keep = $base;
	$base = "$dir/scratch/demo.conf";
	is(run(section([]) . shader([], @good)), 0, 'a shader whose name ends in .conf') or diag $err;
	ok(-s "$base.spv", 'is compiled');
	unlink glob "$dir/scratch/demo.conf*";
	$base = $keep;
}

# ---- the checker

{
	mkdir "$dir/empty";
	symlink $^X, "$dir/empty/perl";
	local $ENV{PATH} = "$dir/empty";
	is(run(section([]) . shader([], @good)), 1, 'no glslangValidator');
	like($err, qr{^demo: .*install the package glslang-tools$}m, 'names the package to install');
	ok(!-e "$base.spv", 'and leaves no compiled shader of an earlier run');
	put('fake/glslangValidator', "#!/bin/sh\necho odd words\nkill -SEGV \$\$\n");
	chmod 0755, "$dir/fake/glslangValidator";
	local $ENV{PATH} = "$dir/fake:/usr/bin:/bin";
	is(run(section([]) . shader([], @good)), 1, 'a glslangValidator that crashes');
	like($err, qr{signal 11}, 'is told');
	like($err, qr{odd words}, 'with its words');
	is_deeply([map { s{.*/}{}r } glob "$dir/scratch/*"], ['demo'], 'and no half files');

	# A compiler with a child that holds the output, as a wrapper has one.
	put('fake/glslangValidator', "#!/bin/sh\nsleep 600 &\necho \$! \$\$ >'$dir/pids.new'\n"
		. "mv '$dir/pids.new' '$dir/pids'\nwait\n");
	for my $signal (qw(ALRM TERM INT HUP)) {
		unlink "$dir/pids";
		my $input = put('in', section([]) . shader([], @good));
		my $pid = fork;
		if (!$pid) {
			setpgrp;
			open STDIN, '<', $input or die;
			open STDERR, '>', "$dir/err" or die;
			exec $filter, 'demo', $base;
		}
		ok(wait_for(sub { -e "$dir/pids" }), 'a compiler that does not end');
		my @pids = split ' ', get("$dir/pids");
		# The limit of time is an alarm; the other signals are how the program stops.
		kill $signal, $pid;
		ok(wait_for(sub { waitpid($pid, POSIX::WNOHANG()) == $pid }), "is left at SIG$signal") or kill 'KILL', $pid;
		is($? >> 8, 1, 'which is a failure');
		ok(wait_for(sub { !grep { !ended($_) } @pids }), 'it has ended, and what it has started, too')
			or kill 'KILL', @pids;
		is(get("$dir/err"), $signal eq 'ALRM' ? "demo: glslangValidator was stopped: it took more than a minute\n"
			: '', $signal eq 'ALRM' ? 'the reason is told' : 'without a word');
		is_deeply([map { s{.*/}{}r } glob "$dir/scratch/*"], ['demo'], 'and no half files are left');
	}
}

done_testing;
