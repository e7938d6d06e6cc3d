# SPDX-License-Identifier: Apache-2.0
# renderiface: what it tells about shaders of both types, and its JSON.
use strict;
use warnings;
use File::Path 'make_path';
use File::Temp 'tempdir';
use FindBin;
use lib $FindBin::Bin;
use JSON::PP;
use ScriptTest qw(put get);
use Test::More;

my $bin = "$FindBin::Bin/../../installation/mray/bin";
my $dir = tempdir(CLEANUP => 1);
make_path("$dir/lib/glsl", "$dir/work dir");
my $work = "$dir/work dir";
delete @ENV{grep { /^TAVRN_/ } keys %ENV};
@ENV{qw(TAVRN_LIB TAVRN_WORKDIR)} = ("$dir/lib", $work);

put("$dir/lib/tavrn.def", "ext.shadersource .old\next.shadersource   .glsl # ours\n  ext.compiledshader .spirv\next.renderiface .rif\n");
put("$dir/lib/glsl/scene.glsl", "in vec3 tvPosition;   // the point\nin vec2 tvUV;\nconst int LAMPS = 4;\n"
	. "uniform vec4 tvLamp[LAMPS];  // the \"lamps\"\nuniform float tvTime;\nout vec4 tvColor;\n");

my $arguments = <<'END_ARGUMENTS';
ArgName Ks
{
    Stow        0
    Lock        0
    Pin         1
    BoxTitle    Metal
    ButtonTitle gloss
    Comments    weight of "the" gloss
    float       0.500000
    MinMax      -1.000000 2.500000
}

ArgName tint
{
    Stow        0
    Lock        0
    Pin         0
    BoxTitle    Mix
    ButtonTitle upper
    Comments    
    rgb         vec3(0.5, 0.25, 1e-3)
}

ArgName cells
{
    Stow        0
    Lock        0
    Pin         0
    BoxTitle    Cells
    ButtonTitle uv
    Comments    two
    generic     vec2(2.0)
}

ArgName Ks
{
    Stow        0
    Lock        0
    Pin         0
    BoxTitle    Plastic
    ButtonTitle gloss
    Comments    again
    float       0.700000
    MinMax      0.000000 1.000000
}

ArgName turn
{
    Stow        0
    Lock        0
    Pin         0
    BoxTitle    Turn
    ButtonTitle by
    Comments    a matrix
    generic     mat2(1.0)
}

END_ARGUMENTS

# Has codefilter make a shader.
sub make {
	my ($type, $name, $args) = @_;
	$ENV{TAVRN_RENOPTS} = put("$dir/options", "setenv MRAY_SIZE \"320,240\"\r\nsetenv NOTE \"a \\\"b\\\" \\\\c\"\r\n"
		. "setenv TAVRN_SHADER_TYPE \"$type\"\r\n");
	put("$work/codegenfile", "Help\n{\n>uniform float fake;\n}\n\n${args}EndArginfo\n#version 330 core\n/*\n" . '*' x 72
		. "\nuniform float fake;\n" . '*' x 72 . "\n*/\n//\@prelude scene\n//\@arguments\nvoid main()\n{\n"
		. "    tvColor = vec4(tvPosition, 1.0);\n}\n");
	system("$bin/codefilter '$name' '$work/$name' <'$work/codegenfile' 2>'$dir/err'") == 0 or diag get("$dir/err");
}

my ($status, $err, $text);
sub run {
	my (@words) = @_;
	my $pid = fork // die;
	if (!$pid) {
		open STDERR, '>', "$dir/err" or die;
		exec $^X, "$bin/redirect.pl", '-', '-', "$dir/err", "$bin/renderiface", @words;
	}
	waitpid $pid, 0;
	$status = $? & 127 ? 'signal' : $? >> 8;
	$err = get("$dir/err");
	return $status;
}

sub interface {
	my ($name) = @_;
	unlink "$dir/out.rif";
	is(run($name, "$dir/out.rif"), 0, "the interface of $name is written");
	is($err, '', 'without a word');
	$text = get("$dir/out.rif");
	my $data = eval { decode_json($text) };
	ok($data, 'as JSON') or diag $@, $text;
	return $data;
}

# ---- a surface shader

make('surface', 'demo', $arguments);
my $data = interface('demo');
is_deeply([@$data{qw(interface version shader type)}], ['mray render interface', 1, 'demo', 'surface'], 'what it is');
is_deeply($data->{language}, { name => 'GLSL', version => '330', profile => 'core' }, 'its language');
is_deeply($data->{entry}, { function => 'main', declaration => 'void main()' }, 'its entry');
is_deeply($data->{files}, {
	source => { name => 'demo.glsl', extension => '.glsl', format => 'GLSL' },
	compiled => { name => 'demo.spirv', extension => '.spirv', format => 'SPIR-V for OpenGL' },
}, 'its files have the extensions of the library');
is_deeply($data->{inputs}, [{ name => 'tvPosition', type => 'vec3', comment => 'the point' },
	{ name => 'tvUV', type => 'vec2' }], 'its inputs');
is_deeply($data->{outputs}, [{ name => 'tvColor', type => 'vec4' }], 'its output');
is_deeply($data->{surroundings}, [{ name => 'tvLamp', type => 'vec4', count => 4, comment => 'the "lamps"' },
	{ name => 'tvTime', type => 'float' }], 'the uniforms that the renderer sets');
is_deeply($data->{uniforms}, [
	{ name => 'Ks', type => 'float', default => [0.5], expression => '0.500000', minimum => -1, maximum => 2.5,
		comment => 'weight of "the" gloss', box => 'Metal', button => 'gloss' },
	{ name => 'tint', type => 'vec3', default => [0.5, 0.25, 0.001], expression => 'vec3(0.5, 0.25, 1e-3)',
		comment => '', box => 'Mix', button => 'upper' },
	{ name => 'cells', type => 'vec2', default => [2, 2], expression => 'vec2(2.0)', comment => 'two',
		box => 'Cells', button => 'uv' },
	{ name => 'turn', type => 'mat2', default => undef, expression => 'mat2(1.0)', comment => 'a matrix',
		box => 'Turn', button => 'by' },
], 'and those that the user may set');
ok(!exists $data->{parameters}, 'which are no parameters');
is_deeply($data->{options}, { MRAY_SIZE => '320,240', NOTE => 'a "b" \\c', TAVRN_SHADER_TYPE => 'surface' },
	'the options of the render');
like($text, qr/"inputs".*"outputs".*"uniforms".*"surroundings".*"options"/s, 'in an order');
my $first = $text;
interface('demo');
is($text, $first, 'that is always the same');

# ---- a module

make('module', 'de-mo', $arguments);
$data = interface('de-mo');
is($data->{type}, 'module', 'a module');
is_deeply($data->{entry}, { function => 'de_mo',
	declaration => 'vec4 de_mo(float Ks, vec3 tint, vec2 cells, mat2 turn)' }, 'is entered by its function');
is_deeply([map { $_->{name} } @{ $data->{parameters} }], [qw(Ks tint cells turn)], 'its arguments are parameters');
ok(!exists $data->{uniforms}, 'and no uniforms');
is_deeply([map { $_->{name} } @{ $data->{inputs} }], [qw(tvPosition tvUV)], 'its inputs are those of a whole shader');
is_deeply([map { $_->{name} } @{ $data->{surroundings} }], [qw(tvLamp tvTime)], 'and so are the surroundings');

# ---- odd content

make('surface', 'bare', '');
$data = interface('bare');
is_deeply([@$data{qw(uniforms)}], [[]], 'no arguments are an empty list');
delete $ENV{TAVRN_RENOPTS};
$data = interface('bare');
is_deeply($data->{options}, {}, 'no options an empty object');
is($data->{type}, 'surface', 'and a surface shader');

my $odd = "back\\slash \"quote\" tab\there \x01 caf\xc3\xa9 \xe2\x82\xac \xf0\x9f\x8e\xa8";
make('surface', 'odd', $arguments =~ s/a matrix/$odd/r);
$data = interface('odd');
is($data->{uniforms}[3]{comment}, "back\\slash \"quote\" tab here   caf\x{e9} \x{20ac} \x{1f3a8}", 'remarks with odd characters');
unlike($text, qr/[^\n\x20-\x7e]/, 'are written in ASCII');
make('surface', 'odd', $arguments =~ s/a matrix/caf\xe9/r);
is(interface('odd')->{uniforms}[3]{comment}, "caf\x{e9}", 'and so is Latin 1');

# ---- failures

put("$dir/out.rif", 'older');
for my $case ([['nothing', "$dir/out.rif"], 1, qr{^renderiface: cannot read \Q$work\E/nothing: No such file}],
		[['demo', "$dir/none/out.rif"], 1, qr{^renderiface: \Q$dir\E/none/out\.rif: No such file}],
		[['demo'], 2, qr{^usage:}], [['a/b', "$dir/out.rif"], 2, qr{^usage:}]) {
	my ($words, $expected, $message) = @$case;
	is(run(@$words), $expected, "renderiface @$words fails");
	like($err, $message, 'and tells why');
}
make('module', 'gone', '');
unlink "$work/gone.frag";
is(run('gone', "$dir/out.rif"), 1, 'a module without its whole shader');
like($err, qr{gone\.frag: No such file}, 'is told');
put("$work/codegenfile", "Help\n{\n");
is(run('demo', "$dir/out.rif"), 1, 'a damaged code file');
like($err, qr{^renderiface: the arginfo section ends early}, 'is told');
{
	local $ENV{TAVRN_WORKDIR} = "$dir/none";
	is(run('demo', "$dir/out.rif"), 1, 'no work directory');
	like($err, qr{TAVRN_WORKDIR must name}, 'is told');
}
is(get("$dir/out.rif"), 'older', 'a failure leaves the older interface alone');
is_deeply([glob "$dir/out.rif.*"], [], 'and nothing beside it');

done_testing;
